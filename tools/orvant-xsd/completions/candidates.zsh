# Types are those of the schema file, and names those of a type in it. Fails where the value is a file.
_orvant_xsd_candidates() { # VALUE
    local mark before
    local -a names
    case $1 in
    (TYPE) compadd -- ${(f)"$(orvant-xsd types "$arguments[1]" 2>/dev/null)"} ;;
    (TYPE=NAME,...)
        if [[ $PREFIX != *=* ]]; then
            names=(${(f)"$(orvant-xsd types "$arguments[1]" 2>/dev/null)"})
            compadd -S '' -- ${^names}=
            return 0
        fi
        [[ $option != --keep-attributes ]] || mark=@
        before=${PREFIX%${PREFIX##*[=,]}}
        names=(${(f)"$(orvant-xsd list "$arguments[1]" 2>/dev/null |
            sed -n "/^${PREFIX%%=*}\$/,/^\$/s/^  $mark\([^@:, ][^:, ]*\).*/\1/p")"})
        compadd -- $before${^names} ;;
    (*) return 1 ;;
    esac
    return 0 # whether there was any
}
