#!/usr/bin/env bash
# The bash completion against the built tool: command words and options from
# its --help, interface keys from the store --store names. bash-completion's
# helpers are stood in for, so the test needs only bash.
set -euo pipefail
tool_dir=$1 source_dir=$2
export PATH="$tool_dir:$PATH"
store=$(mktemp -u /tmp/braxcfg-completion-XXXXXX.db)
trap 'rm -f "$store" "$store"-*' EXIT
braxcfg --store "$store" import "$source_dir/tests/fixtures/setup_every_type.reg"

_init_completion() { COMPREPLY=(); cur=${COMP_WORDS[COMP_CWORD]}; prev=${COMP_WORDS[COMP_CWORD-1]}; words=("${COMP_WORDS[@]}"); cword=$COMP_CWORD; }
_filedir() { COMPREPLY=(FILES); }
source "$source_dir/dist/braxcfg.bash-completion"
failed=0
expect() {
    local want=$1; shift
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _braxcfg || true
    if [[ "${COMPREPLY[*]}" != "$want" ]]; then echo "[$*]: got '${COMPREPLY[*]}', want '$want'"; failed=1; fi
}
expect "resolve" braxcfg res
expect "--store --help --version" braxcfg --
expect "INTF1 INTF12" braxcfg --store "$store" devices INTF1
expect "--alias --json --timeout --help" braxcfg test --
expect "dump canon" braxcfg rsrc ""
expect "FILES" braxcfg --store x
exit $failed
