# Completion of orvant-config for bash. Verbs, options and arguments are those that --help prints, paths
# those of the catalogue.

# The first words of the lines below a heading of --help; with a second word after one blank.
_orvant_config_help() { # HEADING [VERB]
    orvant-config "${@:2}" --help 2>/dev/null |
        sed -n "/^$1:/,/^\$/s/^  \([^ ][^ ]*\( [^ ][^ ]*\)\{0,1\}\).*/\1/p"
}

# What the value of an option may be: "-s,--system SYSTEM" gives SYSTEM. Fails where it has none.
_orvant_config_value() { # OPTION [VERB]
    local line names
    while read -r names line; do
        [[ ,$names, == *,$1,* && -n $line ]] && echo "$line" && return
    done < <(_orvant_config_help Options "${@:2}"; [ $# -eq 1 ] || _orvant_config_help Options)
    return 1
}

# The applications that have a catalogue.
_orvant_config_applications() {
    local folder file
    local IFS=:
    for folder in ${XDG_DATA_HOME:-$HOME/.local/share} ${XDG_DATA_DIRS:-/usr/local/share:/usr/share}; do
        for file in "$folder"/orvant/catalogues/*.xml; do
            [ -e "$file" ] && basename "$file" .xml
        done
    done
}

_orvant_config() {
    local current=${COMP_WORDS[COMP_CWORD]} verb= option= value= quote= word
    local -a passed=() candidates=()
    local -i arguments=0
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        word=${word/#\~\//$HOME/} word=${word//[\\\"\']/}
        if [[ -n $option && $word == = ]]; then
            continue # where bash splits words
        elif [[ -n $option ]]; then
            [[ $option == --color ]] || passed+=("$option" "$word")
            option=
        elif [[ $word == -* ]]; then
            _orvant_config_value "$word" $verb >/dev/null && option=$word
        elif [[ -z $verb ]]; then
            verb=$word
        else
            ((++arguments))
        fi
    done
    [[ $current != = ]] || current=
    [[ $current == [\"\']* ]] && quote=${current:0:1}
    current=${current//[\\\"\']/}

    if [[ -n $option ]]; then
        value=$(_orvant_config_value "$option" $verb)
        [[ $option == -u || $option == --user ]] && value=FILE
    elif [[ $current == -* ]]; then
        value=OPTION
    elif [[ -z $verb ]]; then
        value=VERB
    else
        mapfile -t candidates < <(_orvant_config_help Positionals "$verb")
        ((arguments < ${#candidates[@]})) || arguments=$((${#candidates[@]} - 1))
        ((arguments < 0)) || value=${candidates[arguments]%% *}
    fi
    candidates=()
    case $value in
    OPTION)
        mapfile -t candidates < <({
            _orvant_config_help Options
            [[ -z $verb ]] || _orvant_config_help Options "$verb"
        } | sed 's/ .*//' | tr , '\n' | sort -u) ;;
    VERB) mapfile -t candidates < <(_orvant_config_help Subcommands | sed 's/ .*//') ;;
    PATH | PREFIX)
        mapfile -t candidates < <(orvant-config "${passed[@]}" list --names 2>/dev/null) ;;
    APPLICATION) mapfile -t candidates < <(_orvant_config_applications) ;;
    USER) mapfile -t candidates < <(compgen -u) ;;
    *\{*) IFS=, read -ra candidates <<<"$(sed 's/.*{\(.*\)}.*/\1/' <<<"$value")" ;;
    VALUE | VERSION | '') ;;
    *) compopt -o default ;; # a file
    esac
    COMPREPLY=()
    for word in "${candidates[@]}"; do
        [[ $word == "$current"* ]] || continue
        [[ -n $quote ]] || printf -v word %q "$word"
        COMPREPLY+=("$word")
    done
}

complete -F _orvant_config orvant-config
