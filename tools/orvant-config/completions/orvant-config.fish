# Completion of orvant-config for fish. Verbs, options and arguments are those that --help prints, paths
# those of the catalogue.

# The first words of the lines below a heading of --help; with a second word after one blank.
function __orvant_config_help -a heading
    orvant-config $argv[2..] --help 2>/dev/null |
        sed -n "/^$heading:/,/^\$/s/^  \([^ ][^ ]*\( [^ ][^ ]*\)\{0,1\}\).*/\1/p"
end

# What the value of an option may be: "-s,--system SYSTEM" gives SYSTEM. Fails where it has none.
function __orvant_config_value -a option
    for line in (__orvant_config_help Options $argv[2..]; __orvant_config_help Options)
        set -l parts (string split -m 1 ' ' -- $line)
        if contains -- $option (string split , -- $parts[1]); and set -q parts[2]
            echo -- $parts[2]
            return
        end
    end
    return 1
end

function __orvant_config_complete
    set -l current (commandline -ct)
    set -l verb
    set -l option
    set -l passed
    set -l arguments 1
    for word in (commandline -opc | string replace -r '^~/' ~/)[2..]
        if test -n "$option"
            test $option = --color; or set -a passed $option $word
            set option
        else if string match -q -- '--*=*' $word
            string match -q -- '--color=*' $word; or set -a passed $word
        else if string match -q -- '-*' $word
            __orvant_config_value $word $verb >/dev/null; and set option $word
        else if test -z "$verb"
            set verb $word
        else
            set arguments (math $arguments + 1)
        end
    end

    set -l value
    set -l before '' # what stands before the candidates in the word
    if test -z "$option"; and string match -q -- '--*=*' $current
        set option (string split -m 1 = -- $current)[1]
        set before $option=
        set current (string split -m 1 = -- $current)[2]
    end
    if test -n "$option"
        set value (__orvant_config_value $option $verb)
        contains -- $option -u --user; and set value FILE
    else if string match -q -- '-*' $current
        set value OPTION
    else if test -z "$verb"
        set value VERB
    else
        set -l positionals (__orvant_config_help Positionals $verb)
        test $arguments -le (count $positionals); or set arguments (count $positionals)
        test $arguments -gt 0; and set value (string split ' ' -- $positionals[$arguments])[1]
    end
    switch "$value"
        case OPTION
            for line in (__orvant_config_help Options; __orvant_config_help Options $verb)
                string split , -- (string split ' ' -- $line)[1]
            end | sort -u
        case VERB
            __orvant_config_help Subcommands | string replace -r ' .*' ''
        case PATH PREFIX
            orvant-config $passed list --names 2>/dev/null
        case APPLICATION
            set -l folders ~/.local/share /usr/local/share /usr/share
            set -q XDG_DATA_HOME; and set folders[1] $XDG_DATA_HOME
            set -q XDG_DATA_DIRS; and set folders $folders[1] (string split : -- $XDG_DATA_DIRS)
            for file in $folders/orvant/catalogues/*.xml
                printf '%s\n' $before(basename $file .xml)
            end
        case USER
            printf "$before%s\n" (__fish_complete_users)
        case '*{*'
            printf "$before%s\n" (string replace -r '.*{(.*)}.*' '$1' -- $value | string split ,)
        case VALUE VERSION ''
        case '*'
            printf "$before%s\n" (__fish_complete_path $current)
    end
end

complete -c orvant-config -f -a '(__orvant_config_complete)'
