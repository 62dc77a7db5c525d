#!/usr/bin/env bash
# Holds the help against the program, and its languages against each other. Finds
#
#     topics without a page, pages without text, pages that no topic leads to,
#     topics that the sources use and contract/helptopics.h doesn't know,
#     languages of the texts without help, and topics that one language lacks,
#     links, pictures, style sheets, lines of the contents and of the index that lead nowhere,
#     pages that aren't in the contents or the index, and pictures that no page shows.
#
# Lists each as "file: what" and fails if there is one. "check_help.sh DIRECTORY" looks at another tree than this one.
set -euo pipefail
root=${1:-$(dirname "$0")/..}
cd "$root"

perl - <<'PERL'
use strict;
use warnings;
use File::Find;

my $bad = 0;

sub report {
    my ($file, $what) = @_;
    print "$file: $what\n";
    $bad = 1;
}

sub slurp {
    my ($file) = @_;
    open(my $in, '<', $file) or return undef;
    my $text = do { local $/; <$in> };
    close($in);
    return $text // '';
}

sub names {
    my ($folder, $ending) = @_;
    opendir(my $dir, $folder) or return ();
    my @names = sort grep { /\Q$ending\E$/ } readdir($dir);
    closedir($dir);
    return @names;
}

# --- topics
my $list = 'contract/helptopics.h';
my $known = slurp($list);
if (!defined $known) {
    report($list, 'is missing');
    exit 1;
}
my %topics = map { $_ => 1 } $known =~ /"((?:_PB|PB_|RUN_)\w+)"/g;
report($list, 'has no topics') if !%topics;

my @sources;
for my $folder (grep { -d } qw(contract platform rvlib rvdlm console)) {
    find({no_chdir => 1, wanted => sub { push @sources, $_ if /\.(?:h|cpp)$/ }}, $folder);
}
for my $file (sort @sources) {
    my %seen;
    for my $topic (slurp($file) =~ /"(_PB\d{3}|PB_\d{3}|RUN_(?:STEP|WARN|INSTR)_\d\d)"/g) {
        report($file, "the topic $topic isn't in $list") if !$topics{$topic} && !$seen{$topic}++;
    }
}

# --- languages
my %languages = map { $_ => 1 } map { m{^help/(\w+)/} ? $1 : () } glob('help/*/contents.hhc help/*/*.htm');
for my $file (glob('texts/*.ts')) {
    my ($prefix) = slurp($file) =~ m{id="ONLINE_HELP_PREFIX">.*?<translation>(.*?)</translation>}s;
    if (!defined $prefix) {
        report($file, 'does not say which help is its own (ONLINE_HELP_PREFIX)');
    } elsif (!$languages{$prefix}) {
        report($file, "there is no help for this language, help/$prefix");
    }
}
report('help', 'there is none') if !%languages;

my %pictures = map { $_ => 0 } names('help/images', '.png');

for my $language (sort keys %languages) {
    my $folder = "help/$language";
    my %pages = map { $_ => slurp("$folder/$_") } names($folder, '.htm');
    for my $topic (sort keys %topics) {
        report("$folder/$topic.htm", "is missing: the topic $topic has no text in this language") if !exists $pages{"$topic.htm"};
    }

    # Where a reference of a page leads to; what is wrong with it, or nothing.
    my $wrong = sub {
        my ($reference, $own) = @_;
        return 'leads out of the help' if $reference =~ m{^\w+:|^/|\.\.};
        my ($page, $anchor) = $reference =~ /^([^#]*)(?:#(.*))?$/;
        $page = $own if $page eq '';
        return 'leads nowhere' if !exists $pages{$page};
        return 'leads to no such place of that page'
            if defined $anchor && $pages{$page} !~ /\b(?:id|name)="\Q$anchor\E"/;
        return '';
    };

    for my $page (sort keys %pages) {
        my $file = "$folder/$page";
        my $text = $pages{$page};
        my ($topic) = $page =~ /^(.*)\.htm$/;
        report($file, "no topic leads here: $topic isn't in $list") if !$topics{$topic};
        report($file, 'is not in UTF-8, or does not say so')
            if !utf8::decode(my $copy = $text) || $text !~ /charset=utf-8/i;
        my ($title) = $text =~ m{<title>\s*(.*?)\s*</title>}s;
        report($file, 'has no title') if !$title;
        my ($body) = $text =~ m{<body>(.*)</body>}s;
        $body //= '';
        $body =~ s{<h1>.*?</h1>}{}gs;
        $body =~ s{<[^>]*>}{ }g;
        $body =~ s{\s+}{ }g;
        report($file, 'has no text') if length($body) < 40;
        for my $link ($text =~ /<a\s[^>]*href="([^"]*)"/g) {
            my $why = $wrong->($link, $page);
            report($file, "the link to $link $why") if $why;
        }
        for my $picture ($text =~ /<img\s[^>]*src="([^"]*)"/g) {
            if (exists $pictures{$picture}) {
                $pictures{$picture} = 1;
            } else {
                report($file, "the picture $picture isn't in help/images");
            }
        }
        report($file, 'a picture has no words for those who can not see it (alt)')
            if grep { !/\balt="[^"]+"/ } $text =~ /<img\s[^>]*>/g;
        my @styles = $text =~ /<link\s([^>]*)>/g;
        report($file, 'has no style sheet that the viewer takes: type="text/css" href="style.css"')
            if @styles != 1 || $styles[0] !~ m{type="text/css"} || $styles[0] !~ /href="style\.css"/;
    }

    for my $map ('contents.hhc', 'index.hhk') {
        my $file = "$folder/$map";
        my $text = slurp($file);
        if (!defined $text) {
            report($file, 'is missing');
            next;
        }
        my %listed;
        for my $page ($text =~ /<param name="Local" value="([^"]*)">/g) {
            my $why = $wrong->($page, '');
            report($file, "the line to $page $why") if $why;
            $listed{$page =~ s/#.*//r} = 1;
        }
        for my $page (sort keys %pages) {
            report($file, "$page isn't in it") if !$listed{$page};
        }
    }
}

report('help/style.css', 'is missing') if %languages && !-e 'help/style.css';
for my $picture (sort keys %pictures) {
    report("help/images/$picture", 'no page shows it') if !$pictures{$picture};
}
exit $bad;
PERL
