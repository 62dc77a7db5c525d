#!/usr/bin/env bash
# Dependencies point downwards only:
#
#     console, simulator  ->  rvdlm  ->  rvlib  ->  platform  ->  Qt, spdlog, SQL, sockets
#
# archive/, what is made of runs that are done, lies below the console: on platform/ without its windows and on
# rvlib/math/, and its headers show the standard library only.
#
# Within platform/ the folders include those on their left only:
#
#     system, rvldb, help, paper, window, rvlog, rvcom, rvmdb, rvopc  <-  qt
#
# and Qt itself stands in platform/qt/ alone, so that another folder can take its place.
#
# contract/, what host, module and NC agree on, lies beside them: everybody may include it, and it includes nothing but
# the standard library.
#
# Lists each include, and each Qt name, that breaks this, as "file:line: what: why", and fails if there is one.
# "check_layers.sh DIRECTORY" looks at another tree than this one.
set -euo pipefail
root=${1:-$(dirname "$0")/..}
cd "$root"

files() {
    local folder
    for folder in "$@"; do
        [ -d "$folder" ] && find "$folder" -name '*.h' -o -name '*.cpp'
    done | sort
}

mapfile -t sources < <(files contract platform rvlib rvdlm archive console simulator)
perl - "${sources[@]}" <<'PERL'
use strict;
use warnings;

# The standard library; anything else in angle brackets belongs to a system or to another library.
my %standard = map { $_ => 1 } qw(
    algorithm any array atomic barrier bit bitset charconv chrono codecvt compare complex concepts condition_variable
    coroutine deque exception execution filesystem format forward_list fstream functional future initializer_list
    iomanip ios iosfwd iostream istream iterator latch limits list locale map memory memory_resource mutex new numbers
    numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore set shared_mutex
    source_location span sstream stack stdexcept stop_token streambuf string string_view strstream syncstream
    system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant
    vector version
    cassert cctype cerrno cfenv cfloat cinttypes climits clocale cmath csetjmp csignal cstdarg cstddef cstdint cstdio
    cstdlib cstring ctime cuchar cwchar cwctype);

# What platform/ takes from above, by name: the records of the machine database carry these two, which are plain
# values without any behaviour of the module. A record type of its own would be the same class once more.
my %values = map { $_ => 1 } qw(rvlib/math/matrix.h rvlib/rvbas/array.h);

# The folders of platform/, each above those before it. The last one stands behind the interfaces of all others.
my @order = qw(system rvldb help paper window rvlog rvcom rvmdb rvopc qt);
my %place = map { $order[$_] => $_ } 0 .. $#order;

my $bad = 0;

sub report {
    my ($file, $line, $what, $why) = @_;
    print "$file:$line: $what: $why\n";
    $bad = 1;
}

# Why a file must not include a header; empty if it may.
sub forbidden {
    my ($file, $header, $angled) = @_;
    my ($folder) = $file =~ m{^([^/]+)/};
    my $seam_header = ($folder =~ /^(?:platform|archive)$/ && $file =~ /\.h$/ && $file !~ m{^platform/qt/});
    if ($angled || $header !~ m{^(contract|platform|rvlib|rvdlm|archive|console|simulator)/}) {
        if ($folder =~ /^(?:contract|rvlib|rvdlm)$/ || $seam_header) {
            my $who = $seam_header ? 'a header of the seam' : "$folder/";
            return "quoted includes start at the root of the tree" if !$angled;
            return "$who includes the standard library only" if !$standard{$header};
        }
        my $may_know_qt = ($folder !~ /^(?:platform|archive)$/ || $file =~ m{^platform/qt/});
        return 'Qt stands in platform/qt/' if !$may_know_qt && $header =~ /^q/i && !$standard{$header};
        return '';
    }
    my ($target) = $header =~ m{^([^/]+)/};
    if ($folder eq 'platform' && $target eq 'platform') {
        my ($own, $other) = map { m{^platform/([^/]+)/} ? $1 : '' } $file, $header;
        for ($own, $other) {
            return "platform/$_/ has no place in the order of its folders" if !defined $place{$_};
        }
        return "platform/$own/ stands below platform/$other/" if $place{$own} < $place{$other};
    }
    if ($header =~ m{^platform/qt/} && ($folder eq 'rvlib' || $folder eq 'rvdlm')) {
        return 'platform/qt/ is for what knows the toolkit';
    }
    if ($folder eq 'archive') {
        return 'archive/ knows no window' if $header =~ m{^platform/(?:window|qt)/};
        return 'archive/ takes the mathematics of rvlib/ only' if $header =~ m{^rvlib/(?!math/)};
    }
    my %below = (
        contract  => [qw(contract)],
        platform  => [qw(contract platform)],
        rvlib     => [qw(contract platform rvlib)],
        rvdlm     => [qw(contract platform rvlib rvdlm)],
        # The console loads the module at run time and knows it by its messages only.
        console   => [qw(contract platform rvlib archive simulator console)],
        archive   => [qw(contract platform rvlib archive)],
        # The rotor's physics stand apart from the module's own view of them, or they could not prove it.
        simulator => [qw(contract platform simulator)],
    );
    return '' if grep { $_ eq $target } @{$below{$folder}};
    return '' if $folder eq 'platform' && $values{$header};
    return "$folder/ does not include $target/";
}

for my $file (@ARGV) {
    open(my $in, '<', $file) or die "$file: $!\n";
    my $text = do { local $/; <$in> };
    close($in);
    # Comments go, their lines stay. Texts are matched first, as they may hold what looks like a comment.
    $text =~ s{("(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*')|(/\*.*?\*/|//[^\n]*)}
              { defined $1 ? $1 : ($2 =~ s/[^\n]//gr) }gse;
    my $line = 0;
    for (split /\n/, $text) {
        ++$line;
        if (/^\s*#\s*include\s*([<"])([^>"]+)[>"]/) {
            my $why = forbidden($file, $2, $1 eq '<');
            report($file, $line, $2, $why) if $why;
        } elsif (/^\s*#\s*include/) {
            report($file, $line, $_, 'an include that hides its header');
        } elsif ($file =~ m{^(contract/|platform/(?!qt/)|rvlib/|rvdlm/|archive/)}) {
            # Forward declarations are names too.
            my $code = s/"(?:\\.|[^"\\])*"//gr;
            report($file, $line, $1, 'no Qt type shows here') if $code =~ /\b(Q[A-Z][a-z]\w*|Qt::\w+|Q_[A-Z]+)\b/;
        }
    }
}
exit $bad;
PERL
