# Completions of glintar(1) for fish.

set -l commands line compare diagnose coins source display
set -l first "not __fish_seen_subcommand_from $commands"
function __glintar_after # COMMAND WORD...: the command, and none of the words yet
    set -l words $argv[2..]
    __fish_seen_subcommand_from $argv[1]; and not __fish_seen_subcommand_from $words
end

complete -c glintar -f
complete -c glintar -n $first -a line -d "Print the price line at each refresh"
complete -c glintar -n $first -a compare -d "Print once what each coin costs at every source"
complete -c glintar -n $first -a diagnose -d "Test once which services can be reached"
complete -c glintar -n $first -a coins -d "The coins that are shown"
complete -c glintar -n $first -a source -d "The service that is asked, and your key for it"
complete -c glintar -n $first -a display -d "How prices are shown"
complete -c glintar -n $first -l settings -d "Open the settings window"
complete -c glintar -n $first -l dashboard -d "Open or close the dashboard of one that runs"
complete -c glintar -n $first -l version -d "The version"
complete -c glintar -l help -d "How it is used"
complete -c glintar -n "not __fish_seen_subcommand_from coins source display" -l demo -d "A simulated market"
complete -c glintar -n "__fish_seen_subcommand_from line" -l once -d "Refresh once and end"
complete -c glintar -n "__fish_seen_subcommand_from line" -l fields -x -a "price reference change range sparkline fee" -d "What is shown"
complete -c glintar -n "__fish_seen_subcommand_from line" -l coin -x -d "One coin alone"
complete -c glintar -n "__fish_seen_subcommand_from line" -l format -x -a "waybar i3bar polybar tmux genmon"
complete -c glintar -n "__fish_seen_subcommand_from line compare diagnose list search" -l format -x -a "text json"

complete -c glintar -n "__glintar_after coins list search add remove" -a "list search add remove"
complete -c glintar -n "__fish_seen_subcommand_from add" -l ref -x -d "Your reference price"
complete -c glintar -n "__fish_seen_subcommand_from remove" -a "(glintar coins list 2>/dev/null | awk '{ print \$1 }')"
complete -c glintar -n "__glintar_after source list use key" -a "list use key"
complete -c glintar -n "__fish_seen_subcommand_from use key" \
    -a "(glintar source list 2>/dev/null | cut -c 3- | awk '{ print \$1 }')"
complete -c glintar -n "__glintar_after display list set" -a "list set"
complete -c glintar -n "__fish_seen_subcommand_from set" -a "(glintar display list 2>/dev/null | awk '{ print \$1 }') true false"
