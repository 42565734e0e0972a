# Reads and writes the sources of a tree, and finds texts in them. Required by the
# scripts beside it.
use strict;
use warnings;
use File::Basename qw(dirname);
use File::Find qw(find);
use File::Path qw(make_path);

sub ReadAll
{
    my ($path) = @_;
    open(my $file, '<', $path) or die "$path: $!\n";
    local $/;
    return scalar(<$file>) // '';
}

sub WriteAll
{
    my ($path, $text) = @_;
    make_path(dirname($path));
    open(my $file, '>', $path) or die "$path: $!\n";
    print $file $text;
    close($file) or die "$path: $!\n";
}

# The paths of all sources of the library, the program and the Python package.
sub SourcesOf
{
    my ($tree) = @_;
    my @folders = (split(/\n/, ReadAll("$tree/cmake/rooms.txt")), 'include', 'tools', 'python');
    my @paths;
    find({no_chdir => 1, wanted => sub { push(@paths, $_) if /\.(cpp|h|hpp|py)$/ }},
         map { "$tree/$_" } @folders);
    return map { s{^\Q$tree\E/}{}r } sort @paths;
}

# The places of a text in another, from start to end. Any white space stands for any other, so that
# a list outlives a formatter.
sub PlacesOf
{
    my ($what, $text) = @_;
    my $pattern = join('\s+', map { quotemeta } split(' ', $what));
    die "nothing to look for\n" if $pattern eq '';
    my @places;
    push(@places, [$-[0], $+[0]]) while $text =~ /$pattern/g;
    return @places;
}

# The same, but only where it follows a name in the same function.
sub PlacesIn
{
    my ($name, $what, $text) = @_;
    my %places;
    for my $start (map { $_->[0] } PlacesOf($name, $text)) {
        my $close = index($text, "\n}", $start);
        my $function = substr($text, $start, ($close < 0 ? length($text) : $close) - $start);
        $places{$start + $_->[0]} = [map { $start + $_ } @$_] for PlacesOf($what, $function);
    }
    return map { $places{$_} } sort { $a <=> $b } keys %places;
}

1;
