# Paths are those of the catalogue. Fails where the value is a file.
function __orvant_config_candidates --no-scope-shadowing
    switch $argv[1]
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
            contains -- $option -u --user; and return 1
            printf "$before%s\n" (__fish_complete_users)
        case '*'
            return 1
    end
    return 0 # whether there was any
end
