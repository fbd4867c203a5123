# Paths are those of the catalogue. Fails where the value is a file.
_orvant_config_candidates() { # VALUE
    local -a folders
    case $1 in
    (PATH|PREFIX) compadd -- ${(f)"$(orvant-config $passed list --names 2>/dev/null)"} ;;
    (APPLICATION)
        folders=(${XDG_DATA_HOME:-$HOME/.local/share} ${(s.:.)${XDG_DATA_DIRS:-/usr/local/share:/usr/share}})
        compadd -- ${^folders}/orvant/catalogues/*.xml(N:t:r) ;;
    (USER)
        [[ $option != -u && $option != --user ]] || return 1
        _users ;;
    (*) return 1 ;;
    esac
    return 0 # whether there was any
}
