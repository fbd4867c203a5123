# Prints what zsh would choose proposals from, as far as they begin like the last word.
# usage: zsh complete.zsh COMPLETION LINE
compadd() {
    shift
    local word
    for word; do [[ $word == $PREFIX* ]] && print -r -- $word; done
}
compset() { PREFIX=${PREFIX#*=}; }
_files() { compadd -- *(N); }
_users() { compadd -- ${${(f)"$(</etc/passwd)"}%%:*}; }
words=("${(@s: :)2}")
CURRENT=$#words
PREFIX=$words[CURRENT]
source $1
