#!/bin/sh
# tools/check_words.sh
#
# Fails, naming file and line, when a tracked file or a commit message leans on something that a
# reader of this repository does not have: a document that is not in it (by name, or by the number
# of a chapter or ticket), or a path of the machine where it was written. Comments give the reason
# itself instead.
set -eu
cd "$(dirname "$0")/.."

# Brackets keep the patterns from matching this file. The home of "me" is an example, no machine.
documents='\<[Pp]arts? [0-9]+\.[0-9]|\<[s]pecification|\<[S]pecification|\<(the|per|our|a) [s]pec\>|\<as [s]pecified\>|\<(spec|design|style)\.[m]d\>'
tickets='\<([Ii]ssue|[Tt]icket|[Bb]ug|[Ff]ixes|[Cc]loses|[Ss]ee) ?#[0-9]|\<([Ii]ssue|[Tt]icket) [0-9]'
paths='(^|[^A-Za-z0-9_./-])/(w[o]rk|r[o]ot)/|(^|[^A-Za-z0-9_./-])/h[o]me/([a-ln-z]|m[a-df-z]|me[a-z])|[b]ash_jobs'
pattern="$documents|$tickets|$paths"

faults=0
if git grep -nIE "$pattern" -- .; then faults=1; fi
if git log --format='commit %h: %s%n%w(0,0,0)%b' | grep -nE "$pattern"; then faults=1; fi
if [ "$faults" -ne 0 ]; then
  echo 'check_words: say the reason itself; see docs/HACKING.md' >&2
fi
exit "$faults"
