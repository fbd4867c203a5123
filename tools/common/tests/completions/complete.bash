# Prints what bash proposes for a command line, without quotes.
# usage: bash complete.bash COMPLETION LINE
compopt() { [[ $* != '-o default' ]] || files=yes; }
source "$1"
COMP_LINE=$2
read -ra COMP_WORDS <<<"${2//=/ = }" # bash splits there, too
[[ $2 != *[' ='] ]] || COMP_WORDS+=('')
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
program=${2%% *}
"_${program//-/_}"
[ -z "${files:-}" ] || mapfile -t COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
before=
last=${2##* }
[[ $last != *=* ]] || before=${last%=*}=
[ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]//\\/}" | sed "s|^|$before|"
