#!/usr/bin/env perl
# Keeps the texts that documents quote from keys, pages and warnings the same as those of the program: a text in
# asterisks with a comment behind it that names its key, *Next*<!--SK_NEXT-->, is the translation of that key.
#
#   guide_texts.pl [--write] FILE...     tells each text that differs, or that names no key; --write mends them
#
# Exit status: 0 all agree (or were mended), 1 some don't, 3 wrong arguments.
use strict;
use warnings;
use open qw(:std :encoding(UTF-8));
use FindBin;

my $write = @ARGV && $ARGV[0] eq '--write' ? shift @ARGV : '';
if (!@ARGV || grep { /^-/ } @ARGV) {
    print STDERR "guide_texts.pl [--write] FILE...\n";
    exit 3;
}

sub slurp {
    my ($file) = @_;
    open my $in, '<', $file or die "$file: $!\n";
    local $/;
    return scalar <$in>;
}

my %entity = (lt => '<', gt => '>', quot => '"', apos => "'", amp => '&');
my %text;
my $language = slurp("$FindBin::Bin/../texts/rotor_trim_en.ts");
while ($language =~ m{<message id="([^"]+)">.*?<translation>(.*?)</translation>}gs) {
    my ($key, $value) = ($1, $2);
    $value =~ s/&(lt|gt|quot|apos|amp);/$entity{$1}/g;
    $value =~ s/\s+/ /g;
    $text{$key} = $value;
}

my $bad = 0;
for my $file (@ARGV) {
    my $page = slurp($file);
    my $mended = $page;
    $mended =~ s{(\*{1,2})([^*]*)\1<!--([A-Z][A-Z0-9_]*)-->}{
        my ($mark, $quoted, $key) = ($1, $2, $3);
        my $is = $text{$key};
        if (!defined $is) {
            print "$file: \"$quoted\": there is no text $key\n";
            $bad = 1;
            $is = $quoted;
        } elsif ((my $one = $quoted) =~ s/\s+/ /gr ne $is) {
            print "$file: \"$quoted\" is \"$is\" now ($key)\n";
            $bad = 1 if !$write;
        } else {
            $is = $quoted;    # also where a line ends within it
        }
        "$mark$is$mark<!--$key-->"
    }ge;
    if ($write && $mended ne $page) {
        open my $out, '>', $file or die "$file: $!\n";
        print $out $mended;
        close $out or die "$file: $!\n";
    }
}
exit $bad;
