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

# Paths are those of the catalogue. Fails where the value is a file.
_orvant_config_candidates() { # VALUE
    case $1 in
    PATH | PREFIX)
        mapfile -t candidates < <(orvant-config "${passed[@]}" list --names 2>/dev/null) ;;
    APPLICATION) mapfile -t candidates < <(_orvant_config_applications) ;;
    USER)
        [[ $option != -u && $option != --user ]] || return 1
        mapfile -t candidates < <(compgen -u) ;;
    *) return 1 ;;
    esac
}
