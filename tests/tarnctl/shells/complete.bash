# Prints what bash makes of a command line on which it inserts all completions, one word a line, from the word that is completed.
#
#   bash complete.bash SCRIPT 'tarnctl call TarnGetRadioN'
#
# The line is typed into an interactive bash: ESC * inserts, Ctrl-A goes to the start, and printf makes the line visible.
script=$1
line=$2
read -r -a typed <<< "$line"
before=${#typed[@]}
[[ $line == *' ' ]] || before=$((before - 1))
printf 'source %q\n%s\033*\001printf "%%s\\n" \n' "$script" "$line" | bash --norc -i 2> /dev/null | tail -n "+$((before + 1))"
