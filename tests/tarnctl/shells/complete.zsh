# Prints what zsh offers for a command line, one word a line.
#
#   zsh -f complete.zsh SCRIPT 'tarnctl call TarnGetRadioN'
#
# The line is typed into an interactive zsh with a terminal of its own, in which every match is written down on its way.
zmodload zsh/zpty
offers=$(mktemp)
zpty shell 'zsh -f -i'
zpty -w shell "autoload -Uz compinit && compinit -u -D; source ${(q)1}"
zpty -w shell 'compadd() { local -a hits; builtin compadd -O hits "$@"; (( $#hits )) && print -rl -- $hits >> '$offers'; builtin compadd "$@" }'
zpty -w shell 'finish() { exit }; zle -N finish; bindkey "^X" finish'
zpty -w -n shell "$2"$'\t\x18'
zpty -r shell output '*nothing ends with this*' # reads up to the end
cat $offers
rm -f $offers
