#!/usr/bin/perl
# Turns a pixel map into an .ico file with 16 colours: make_icon.pl map.txt out.ico
# The map holds square images separated by empty lines, one character a pixel; lines that begin with "# " are comments.
use strict;
use warnings;

# The platform's 16 colours in palette order, a letter each; "." is transparent.
my @palette = (
    ['#', 0, 0, 0],       ['r', 128, 0, 0],   ['g', 0, 128, 0],   ['o', 128, 128, 0],
    ['b', 0, 0, 128],     ['m', 128, 0, 128], ['k', 0, 128, 128], ['s', 192, 192, 192],
    ['d', 128, 128, 128], ['R', 255, 0, 0],   ['G', 0, 255, 0],   ['y', 255, 255, 0],
    ['B', 0, 0, 255],     ['M', 255, 0, 255], ['c', 0, 255, 255], ['w', 255, 255, 255],
);
my %index = map { $palette[$_][0] => $_ } 0 .. 15;
my $colours = join '', map { pack 'C4', @{$_}[3, 2, 1], 0 } @palette;

my ($source, $target) = @ARGV;
open my $in, '<', $source or die "$source: $!\n";
my $text = join '', grep { !/^# / } <$in>;
my (@directory, @images);
for my $map (split /\n\s*\n/, $text) {
    my @rows = grep { length } split /\n/, $map;
    my $size = @rows;
    my ($pixels, $mask) = ('', '');
    for my $row (reverse @rows) {    # images are stored from the bottom up
        length $row == $size or die "$source: '$row' is not $size characters long\n";
        my $numbers = join '', map {
            $_ eq '.' ? '0' : sprintf '%x', $index{$_} // die "$source: unknown colour '$_'\n"
        } split //, $row;
        $pixels .= pack 'H*', $numbers;
        my $transparent = $row =~ tr/./1/r =~ tr/1/0/cr;
        $mask .= pack 'B32', $transparent . '0' x (32 - $size);    # rows are padded to four bytes
    }
    # Height counts both the picture and its mask.
    my $image = pack('V3 v2 V6', 40, $size, 2 * $size, 1, 4, 0, length($pixels) + length($mask), 0, 0, 16, 0)
        . $colours . $pixels . $mask;
    push @directory, [$size, length $image];
    push @images, $image;
}

my $offset = 6 + 16 * @images;
my $icon = pack 'v3', 0, 1, scalar @images;
for my $entry (@directory) {
    my ($size, $length) = @$entry;
    $icon .= pack 'C4 v2 V2', $size, $size, 16, 0, 1, 4, $length, $offset;
    $offset += $length;
}
open my $out, '>:raw', $target or die "$target: $!\n";
print {$out} $icon, @images;
close $out or die "$target: $!\n";
