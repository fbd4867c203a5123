#compdef orvant-config
# Completion of orvant-config for zsh. Verbs, options and arguments are those that --help prints, paths
# those of the catalogue.

# The first words of the lines below a heading of --help; with a second word after one blank.
_orvant_config_help() { # HEADING [VERB]
    orvant-config "${@[2,-1]}" --help 2>/dev/null |
        sed -n "/^$1:/,/^\$/s/^  \([^ ][^ ]*\( [^ ][^ ]*\)\{0,1\}\).*/\1/p"
}

# What the value of an option may be: "-s,--system SYSTEM" gives SYSTEM. Fails where it has none.
_orvant_config_value() { # OPTION [VERB]
    local line
    for line in ${(f)"$(_orvant_config_help Options $2; _orvant_config_help Options)"}; do
        [[ ,${line%% *}, == *,$1,* && $line == *' '* ]] && print -r -- ${line#* } && return
    done
    return 1
}

_orvant_config() {
    local verb option value word
    local -a passed candidates folders
    local -i arguments=0
    for word in "${(@Q)words[2,CURRENT-1]}"; do
        word=${word/#\~\//$HOME/}
        if [[ -n $option ]]; then
            [[ $option == --color ]] || passed+=("$option" "$word")
            option=
        elif [[ $word == --*=* ]]; then
            [[ $word == --color=* ]] || passed+=("$word")
        elif [[ $word == -* ]]; then
            _orvant_config_value $word $verb >/dev/null && option=$word
        elif [[ -z $verb ]]; then
            verb=$word
        else
            (( ++arguments ))
        fi
    done

    if [[ -z $option && $PREFIX == --*=* ]]; then
        option=${PREFIX%%=*}
        compset -P '*='
    fi
    if [[ -n $option ]]; then
        value=$(_orvant_config_value $option $verb)
        [[ $option == -u || $option == --user ]] && value=FILE
    elif [[ $PREFIX == -* ]]; then
        value=OPTION
    elif [[ -z $verb ]]; then
        value=VERB
    else
        candidates=(${(f)"$(_orvant_config_help Positionals $verb)"})
        (( arguments < $#candidates )) || arguments=$(( $#candidates - 1 ))
        (( arguments < 0 )) || value=${candidates[arguments + 1]%% *}
    fi
    case $value in
    (OPTION)
        candidates=(${(f)"$(_orvant_config_help Options; _orvant_config_help Options $verb)"})
        candidates=(${(s:,:)${(j:,:)${candidates%% *}}})
        compadd -- ${(u)candidates} ;;
    (VERB) compadd -- ${${(f)"$(_orvant_config_help Subcommands)"}%% *} ;;
    (PATH|PREFIX) compadd -- ${(f)"$(orvant-config $passed list --names 2>/dev/null)"} ;;
    (APPLICATION)
        folders=(${XDG_DATA_HOME:-$HOME/.local/share} ${(s.:.)${XDG_DATA_DIRS:-/usr/local/share:/usr/share}})
        compadd -- ${^folders}/orvant/catalogues/*.xml(N:t:r) ;;
    (USER) _users ;;
    (*\{*) compadd -- ${(s:,:)${${value#*\{}%\}*}} ;;
    (VALUE|VERSION|'') ;;
    (*) _files ;;
    esac
}

_orvant_config "$@"
