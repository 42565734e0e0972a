#!/usr/bin/env perl
# Writes a TIFF file of separated inks, whose samples depend on the seed alone:
#   make_picture.pl WIDTH HEIGHT CHANNELS BITS none|lzw|deflate|packbits SEED >FILE
use strict;
use warnings;
use Compress::Zlib;

my ($width, $height, $channels, $bits, $compression, $seed) = @ARGV;
my $rowsPerStrip = 7;
my $rowBytes = int(($width * $channels * $bits + 7) / 8);

# Ramps with some noise, which compress a little.
sub row {
    my ($y) = @_;
    my $row = '';
    for my $byte (0 .. $rowBytes - 1) {
        $seed = ($seed * 1103515245 + 12345) % 2**31;
        $row .= chr(($byte * 3 + $y + ($seed >> 28)) % 256);
    }
    return $row;
}

# Single bytes, each as a code of 9 bits: 256 starts anew before codes would grow, 257 ends.
sub lzw {
    my @codes = map { ord } split //, $_[0];
    my $stream = '';
    while (my @some = splice @codes, 0, 200) {
        $stream .= sprintf '%09b', $_ for 256, @some;
    }
    return pack 'B*', $stream . sprintf '%09b', 257;
}

sub packbits {
    my @rows = unpack "(a$rowBytes)*", $_[0];
    return join '', map { map { chr(length($_) - 1) . $_ } unpack '(a128)*', $_ } @rows;
}

my %codes = (none => 1, lzw => 5, deflate => 8, packbits => 32773);
my %encoders = (none => sub { $_[0] }, lzw => \&lzw, deflate => sub { compress($_[0]) },
    packbits => \&packbits);

my ($data, @offsets, @counts) = ('');
for (my $y = 0; $y < $height; $y += $rowsPerStrip) {
    my $end = $y + $rowsPerStrip < $height ? $y + $rowsPerStrip : $height;
    my $strip = $encoders{$compression}->(join '', map { row($_) } $y .. $end - 1);
    $strip .= "\0" if length($strip) % 2;
    push @offsets, 8 + length $data;
    push @counts, length $strip;
    $data .= $strip;
}

# Values that don't fit into their entries follow the samples.
my $extra = '';
sub entry {
    my ($tag, $type, @values) = @_;
    my $bytes = pack $type == 3 ? 'v*' : 'V*', @values;
    if (length $bytes > 4) {
        my $place = 8 + length($data) + length $extra;
        $extra .= $bytes;
        $bytes = pack 'V', $place;
    }
    return pack('vvV', $tag, $type, scalar @values) . $bytes . "\0" x (4 - length $bytes);
}
my @entries = (entry(256, 4, $width), entry(257, 4, $height),
    entry(258, 3, ($bits) x $channels), entry(259, 3, $codes{$compression}), entry(262, 3, 5),
    entry(273, 4, @offsets), entry(277, 3, $channels), entry(278, 4, $rowsPerStrip),
    entry(279, 4, @counts), entry(284, 3, 1), entry(332, 3, 2), entry(334, 3, $channels));

binmode STDOUT;
print 'II', pack('vV', 42, 8 + length($data) + length $extra), $data, $extra,
    pack('v', scalar @entries), @entries, pack 'V', 0;
