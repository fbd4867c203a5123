# Types are those of the schema file, and names those of a type in it. Fails where the value is a file.
function __orvant_xsd_candidates --no-scope-shadowing
    switch $argv[1]
        case TYPE
            orvant-xsd types "$arguments[1]" 2>/dev/null | string replace -r '^' "$before"
        case 'TYPE=NAME,...'
            if not string match -q '*=*' -- $current
                orvant-xsd types "$arguments[1]" 2>/dev/null | string replace -r '^(.*)' "$before\$1="
                return 0
            end
            set -l mark
            test $option = --keep-attributes; and set mark @
            set -l type (string split -m 1 = -- $current)[1]
            set -l said (string replace -r '[^=,]*$' '' -- $current)
            orvant-xsd list "$arguments[1]" 2>/dev/null |
                sed -n "/^$type\$/,/^\$/s/^  $mark\([^@:, ][^:, ]*\).*/$before$said\1/p"
        case '*'
            return 1
    end
    return 0 # whether there was any
end
