#!/usr/bin/env perl
# The breakages that mutate.sh tries.
#
#   mutations.pl [--sample N --seed S] FILE...   lists them, all or a sample, a line each, by file and place:
#                                                FILE, LINE, OFFSET, LENGTH, WHAT, REPLACEMENT, separated by tabs
#   mutations.pl --apply FILE OFFSET LENGTH REPLACEMENT   makes one of them in FILE
#
# In REPLACEMENT and WHAT \n, \t and \\ stand for line end, tab and backslash. Only code is broken: comments, texts,
# preprocessor lines, static assertions and what is said to trace a run stay as they are.
use strict;
use warnings;

my %turned = (
    '<'  => '<=', '<=' => '<',  '>'  => '>=', '>=' => '>',  '==' => '!=', '!=' => '==', '&&' => '||', '||' => '&&',
    '+'  => '-',  '-'  => '+',  '*'  => '/',  '/'  => '*',  '+=' => '-=', '-=' => '+=', '*=' => '/=', '/=' => '*=',
    '%'  => '/',
);
my %words = (
    true => 'false', false => 'true', 'std::min' => 'std::max', 'std::max' => 'std::min',
);

sub read_file {
    my ($file) = @_;
    open(my $in, '<:raw', $file) or die "$file: $!\n";
    local $/;
    return <$in>;
}

sub escaped { return $_[0] =~ s{([\\\n\t])}{$1 eq "\\" ? "\\\\" : $1 eq "\n" ? "\\n" : "\\t"}ger }
sub unescaped { return $_[0] =~ s{\\([\\nt])}{$1 eq "n" ? "\n" : $1 eq "t" ? "\t" : "\\"}ger }
sub one_line { return $_[0] =~ s/\s+/ /gr =~ s/^ | $//gr }

# What may not be touched, blanked out with every character in its place.
sub blank { return $_[0] =~ s/[^\n]/ /gr }

my $parens = qr/(?<parens>\((?:[^()]++|(?&parens))*+\))/;

sub code_of {
    my ($text) = @_;
    $text =~ s{(?<text>R"(?<mark>[^\s()\\]*)\(.*?\)\g{mark}"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])*')|(?<comment>/\*.*?\*/|//[^\n]*)}
              { defined $+{comment} ? blank($+{comment}) : $+{text} =~ s/[^\n]/"/gr }gse;
    $text =~ s{^[ \t]*#(?:[^\n]*\\\n)*[^\n]*}{blank($&)}gme;
    $text =~ s{\b(?:static_assert|PB_FLOW|PB_MATH|LOG_MATRIX|DUMP_MATRIX|RV_DEBUG|RV_PROTOCOL|RV_PROTOCOL_DETAIL|RV_INFORMATION)\s*$parens;?}{blank($&)}ge;
    # What an error says is a text; that it is said isn't.
    $text =~ s{(\bRV_(?:WARNING|ERROR)\s*)($parens)}{$1 . '(' . blank(substr($2, 1, -1)) =~ tr/ /"/r . ')'}ge;
    $text =~ s{\[\[.*?\]\]}{blank($&)}gse;
    return $text;
}

# Off by one; zero and one are told apart from each other.
sub next_constant {
    my ($constant) = @_;
    my ($number, $suffix) = $constant =~ /^(.*?)([uUlLfF]*)$/;
    return $constant =~ /^0[xX]/ ? "($constant + 1)"
        : $number =~ /[.eE]/     ? "($constant + 1)"
        : $number eq '1'         ? "0$suffix"
        : ($number =~ tr/'//dr) + 1 . $suffix;
}

sub mutations_of {
    my ($file) = @_;
    my $text = read_file($file);
    my $code = code_of($text);
    my @found;
    my $add = sub {
        my ($offset, $length, $replacement, $what) = @_;
        my $line = 1 + (substr($text, 0, $offset) =~ tr/\n//);
        push @found, [$file, $line, $offset, $length, $what, $replacement];
    };
    my %negated;    # places that a turned condition has already broken in the same way

    # A condition turned.
    while ($code =~ /\b(?:if|while)\s*(?=\()/g) {
        my $start = pos $code;
        $code =~ /\G$parens/gc or next;
        my $length = length $&;
        my $condition = substr($text, $start, $length);
        my $bare = substr($code, $start, $length);
        $add->($start, $length, "(!$condition)", 'condition turned: ' . one_line($condition));
        $negated{$start + $-[0]} = 1 if $bare !~ /&&|\|\|/ && $bare =~ /\s[!=]=\s|(?<=^\()!/;
    }
    while ($code =~ /\s\?\s/g) {
        my ($start, $end) = ($-[0], $+[0]);
        $add->($start, $end - $start, ' == false' . substr($text, $start, $end - $start), 'condition of ?: turned');
        pos($code) = $start + 1;
    }
    while ($code =~ /(?<![\w)\]!])!(?=[\w(:])/g) {
        $add->($-[0], 1, '', '! left out') if !$negated{$-[0]};
    }

    # An operator changed. Only one between blanks is one: the format of the tree sees to that.
    while ($code =~ /(?<=\S)[ ]([-<>=!&|+*\/%]{1,2})(?=\s)/g) {
        my ($start, $operator) = ($-[0], $1);
        my $other = $turned{$operator};
        next if !defined $other || $negated{$start} || substr($code, 0, $start) =~ /\b(?:template|operator)$/;
        $add->($start + 1, length $operator, $other, "$operator is now $other");
    }
    while ($code =~ /(?<=[(,=?:{\[\s])-(?=[\w(])/g) {
        $add->($-[0], 1, '', 'sign left out');
    }

    # A constant off by one.
    while ($code =~ /(?<![\w.'])(?:0[xX][0-9a-fA-F']+|[0-9][0-9']*(?:\.[0-9]*)?(?:[eE][-+]?[0-9]+)?)[uUlLfF]*(?![\w.'])/g) {
        my ($start, $constant) = ($-[0], $&);
        next if substr($code, 0, $start) =~ /\)\s*(?:const\s*)?(?:noexcept\s*)?=\s*$/;    # pure virtual
        my $other = next_constant($constant);
        $add->($start, length $constant, $other, "$constant is now $other");
    }
    for my $word (sort keys %words) {
        while ($code =~ /(?<![\w:])\Q$word\E(?!\w)/g) {
            $add->($-[0], length $word, $words{$word}, "$word is now $words{$word}");
        }
    }

    # A call or an assignment left out.
    my $link = qr/(?:[A-Za-z_][\w:]*(?:<[\w:,\s*&]+>)?)/;
    while ($code =~ /(?:[;{}]|\bcase [\w:]+:|\bdefault:)(?=\s)/g) {
        my $before = pos $code;
        $code =~ /\G\s*/gc;
        my $start = pos $code;
        if ($code =~ /\G\*?$link(?:(?:\.|->)$link|\[[^\]\n;]*\]|$parens)*(?<rest>\s*(?:=|[-+*\/|&]=)\s[^;]*)?;/gc) {
            my $length = $+[0] - $start;
            my $is_call = !defined $+{rest};
            my $statement = substr($text, $start, $length);
            my $bare = substr($code, $start, $length);
            if ($statement !~ /^(?:return|throw|delete|break|continue|default|using|goto|static_cast|public|private|protected)\b/
                && (!$is_call || $bare =~ /\)\s*;$/)) {
                $add->($start, $length, ';', 'left out: ' . one_line($statement));
            }
        }
        pos($code) = $before;
    }
    return sort { $a->[2] <=> $b->[2] || $a->[4] cmp $b->[4] } @found;
}

if (@ARGV == 5 && $ARGV[0] eq '--apply') {
    my (undef, $file, $offset, $length, $replacement) = @ARGV;
    my $text = read_file($file);
    substr($text, $offset, $length) = unescaped($replacement);
    open(my $out, '>:raw', $file) or die "$file: $!\n";
    print {$out} $text;
    close($out) or die "$file: $!\n";
    exit 0;
}

my ($sample, $seed);
while (@ARGV && $ARGV[0] =~ /^--(sample|seed)$/) {
    my $option = shift;
    my $value = shift // '';
    $value =~ /^[0-9]+$/ or die "$option takes a number\n";
    ($option eq '--sample' ? $sample : $seed) = $value;
}
@ARGV or die "usage: mutations.pl [--sample N --seed S] FILE...\n";

my @all = map { mutations_of($_) } sort @ARGV;
if (defined $sample) {
    defined $seed or die "a sample needs a seed\n";
    srand $seed;
    my @order = 0 .. $#all;
    for my $i (reverse 1 .. $#order) {
        my $j = int rand($i + 1);
        @order[$i, $j] = @order[$j, $i];
    }
    $#order = $sample - 1 if $sample < @order;
    # By file, so that each is built in its own form once.
    @all = @all[sort { $a <=> $b } @order];
}
for my $mutation (@all) {
    print join("\t", map { escaped($_) } @{$mutation}), "\n";
}
