#!/usr/bin/env bash
# Time comes from the event loop alone: above the seam nothing reads a clock or sleeps in another way, or a run under
# virtual time would not be the same on every machine. Lists each breach as "file:line: text" and fails if there is one.
# "check_rules.sh DIRECTORY" looks at another tree than this one.
set -euo pipefail
root=${1:-$(dirname "$0")/..}
cd "$root"

mapfile -t sources < <(
    for folder in rvlib rvdlm; do
        [ -d "$folder" ] && find "$folder" -name '*.h' -o -name '*.cpp'
    done | sort)
perl - "${sources[@]}" <<'PERL'
use strict;
use warnings;

my @breaches = (
    qr/\b\w*_clock\s*::\s*now\b/,
    qr/\b(?:sleep_for|sleep_until|usleep|nanosleep|clock_nanosleep)\b/,
    qr/(?<![\w.>])(?:std\s*::\s*|::\s*)?(?:time|clock|sleep|gettimeofday|clock_gettime|timespec_get|ftime)\s*\(/,
    qr/\b(?:wait_for|wait_until|this_thread)\b/,
);

my $bad = 0;
for my $file (@ARGV) {
    open(my $in, '<', $file) or die "$file: $!\n";
    my $text = do { local $/; <$in> };
    close($in);
    # Comments and texts go, their lines stay.
    $text =~ s{("(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*')|(/\*.*?\*/|//[^\n]*)}
              { (defined $1 ? $1 : $2) =~ s/[^\n]//gr }gse;
    my $line = 0;
    for my $code (split /\n/, $text) {
        ++$line;
        if (grep { $code =~ $_ } @breaches) {
            print "$file:$line: $code\n";
            $bad = 1;
        }
    }
}
exit $bad;
PERL
