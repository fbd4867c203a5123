# Types are those of the schema file, and names those of a type in it. Fails where the value is a file.
_orvant_xsd_candidates() { # VALUE
    local before= mark=
    local file=${arguments[0]-}
    case $1 in
    TYPE) mapfile -t candidates < <(orvant-xsd types "$file" 2>/dev/null) ;;
    TYPE=NAME,...)
        if [[ $current != *=* ]]; then
            mapfile -t candidates < <(orvant-xsd types "$file" 2>/dev/null | sed 's/$/=/')
            compopt -o nospace
            return
        fi
        [[ $option != --keep-attributes ]] || mark=@
        before=${current%"${current##*[=,]}"}
        mapfile -t candidates < <(orvant-xsd list "$file" 2>/dev/null |
            sed -n "/^${current%%=*}\$/,/^\$/s/^  $mark\([^@:, ][^:, ]*\).*/\1/p")
        candidates=("${candidates[@]/#/$before}") ;;
    *) return 1 ;;
    esac
}
