# fish completion for tarnctl and tarn-fleet. The program itself says what can follow: `tarnctl complete WORD...`

function __tarnctl_complete
    set -l words (commandline -opc)
    set -l present (commandline -ct)
    for line in ($words[1] complete -- $words[2..] "$present" 2>/dev/null)
        switch $line
            case '<file>*'
                __fish_complete_path "$present"
            case '<directory>*'
                __fish_complete_directories "$present"
            case '*'
                echo $line
        end
    end
end

complete -c tarnctl -c tarn-fleet -f -a '(__tarnctl_complete)'
