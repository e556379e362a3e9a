# Prints what fish offers for a command line, one word a line.
#
#   fish --no-config complete.fish SCRIPT 'tarnctl call TarnGetRadioN'
source $argv[1]
for offer in (complete -C $argv[2])
    echo (string split -- \t $offer)[1]
end
