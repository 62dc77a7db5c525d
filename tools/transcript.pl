#!/usr/bin/env perl
# Runs the transcripts of a document, line by line, in an empty directory, and compares what they print.
#
#   transcript.pl PROGRAMS FILE       PROGRAMS: the directory where rotor-trim lies, which comes first in PATH
#
# A transcript is a block ```console. A line that begins with "$ " is a command, what follows is what it prints (both
# streams): a line "..." stands for any number of lines, within a line for any text, and a number for any number. "(exit status 1)" on a line of its own says
# that it doesn't end with 0. All blocks of a document are one session: a command that ends with "&" goes on, and is ended
# with the session. The port 4002 stands for any that is free.
#
# Exit status: 0 all is as it stands there, 1 something isn't, 3 wrong arguments.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Temp qw(tempdir);
use IO::Socket::INET;
use POSIX qw(setsid);

use constant LIMIT => 120;    # seconds for a command

if (@ARGV != 2 || !-x "$ARGV[0]/rotor-trim") {
    print STDERR "transcript.pl PROGRAMS FILE: rotor-trim is to lie in PROGRAMS\n";
    exit 3;
}
my ($programs, $file) = (abs_path($ARGV[0]), abs_path($ARGV[1]));

my @steps;
open my $in, '<', $file or die "$file: $!\n";
my $inside = 0;
while (my $line = <$in>) {
    chomp $line;
    if ($line =~ /^```/) {
        $inside = $line eq '```console';
    } elsif ($inside && $line =~ /^\$ (.*)/) {
        push @steps, { command => $1, place => $., status => 0, expected => [] };
    } elsif ($inside && @steps && $line =~ /^\(exit status (\d+)\)$/) {
        $steps[-1]{status} = $1;
    } elsif ($inside && @steps) {
        push @{ $steps[-1]{expected} }, $line;
    }
}
close $in;
if (!@steps) {
    print "$file: no transcript\n";
    exit 1;
}

my $free = IO::Socket::INET->new(Listen => 1, LocalAddr => '127.0.0.1') or die "no port: $!\n";
my $port = $free->sockport;
close $free;

my $directory = tempdir(CLEANUP => 1);
$ENV{PATH} = "$programs:$ENV{PATH}";
$ENV{HOME} = $directory;
$ENV{LC_ALL} = 'C.UTF-8';
delete @ENV{qw(XDG_DATA_HOME CORVANE_DATABASE DISPLAY WAYLAND_DISPLAY)};
chdir $directory or die "$directory: $!\n";

my @background;
END { my $status = $?; kill 'TERM', map { -$_ } @background; waitpid $_, 0 for @background; chdir '/'; $? = $status; }
$SIG{INT} = $SIG{TERM} = sub { exit 1 };

# What counts of a line.
sub plain {
    my ($line) = @_;
    $line =~ s/\s+$//;
    $line =~ s/-?\d+(?:[.,:]\d+)*/0/g;
    $line =~ s/\s+/ /g;
    return $line;
}

# Whether lines are as expected, with "..." for any.
sub agrees {
    my ($expected, $printed) = @_;
    my $pattern = join '', map { $_ eq '...' ? '(?:[^\n]*\n)*?' : quotemeta(plain($_)) =~ s/(?:\\\.){3}/[^\n]*/r . '\n' } @$expected;
    my $text = join '', map { plain($_) . "\n" } @$printed;
    return $text =~ /^$pattern\z/;
}

sub run {
    my ($command) = @_;
    my $goes_on = $command =~ s/\s*&\s*$//;
    my $child = fork // die "fork: $!\n";
    if (!$child) {
        setsid();
        open STDIN, '<', '/dev/null';
        open STDOUT, '>', $goes_on ? '/dev/null' : 'output.of.the.command';
        open STDERR, '>&', \*STDOUT;
        exec '/bin/sh', '-c', $command;
    }
    if ($goes_on) {
        push @background, $child;
        return (0);
    }
    local $SIG{ALRM} = sub { kill 'KILL', -$child };
    alarm LIMIT;
    waitpid $child, 0;
    alarm 0;
    my $status = $? & 127 ? 128 + ($? & 127) : $? >> 8;
    open my $output, '<', 'output.of.the.command' or die "output: $!\n";
    my @lines = <$output>;
    close $output;
    unlink 'output.of.the.command';
    chomp @lines;
    return ($status, @lines);
}

my $bad = 0;
for my $step (@steps) {
    my ($status, @printed) = run($step->{command} =~ s/\b4002\b/$port/gr);
    if ($status != $step->{status} || !agrees($step->{expected}, \@printed)) {
        print "$file:$step->{place}: \$ $step->{command}\nended with $status and printed:\n", map { "    $_\n" } @printed;
        $bad = 1;
    }
}
printf "%d lines of the transcript in %s %s\n", scalar @steps, $file =~ s{.*/}{}r, $bad ? 'were run' : 'do what stands there';
exit $bad;
