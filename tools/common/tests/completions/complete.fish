# Prints what fish proposes for a command line, without descriptions.
# usage: fish complete.fish COMPLETION LINE
source $argv[1]
complete -C $argv[2] | string replace -r '\t.*' ''
