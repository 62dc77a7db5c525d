# shellcheck shell=bash
# Sourced by .ci/run: says which step is under way, and tells at the end, whatever that is, how long each took.
#
#   begin_steps    first of all
#   step NAME      what was under way is done, this begins
#   end_steps      all are done; a script that ends without it has failed in the step under way

begin_steps() {
    step_lines=()
    step_name=""
    trap tell_steps EXIT
}

# close_step WORD: notes the step under way, if there is one, with what became of it.
close_step() {
    [ -n "$step_name" ] || return 0
    step_lines+=("$(printf '%4d:%02d  %-6s  %s' $(((SECONDS - step_begin) / 60)) $(((SECONDS - step_begin) % 60)) "$1" "$step_name")")
    step_name=""
}

step() {
    close_step ok
    step_name=$*
    step_begin=$SECONDS
    printf '== %s (%s)\n' "$step_name" "$(date +%H:%M:%S)" >&2
}

end_steps() { close_step ok; }

tell_steps() {
    local status=$?
    close_step FAILED
    [ ${#step_lines[@]} -eq 0 ] || printf '%s\n' "How long it took, min:s" "${step_lines[@]}" \
        "$(printf '%4d:%02d  in all' $((SECONDS / 60)) $((SECONDS % 60)))" >&2
    exit "$status"
}
