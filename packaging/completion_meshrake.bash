# Completion of meshrake for bash.

_meshrake() {
    mapfile -t COMPREPLY < <(compgen -W '--make_plot_control' -- "$2")
}
complete -F _meshrake meshrake
