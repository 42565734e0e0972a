# Reads the lists of planted defects beside it, and plants one of them in a tree.
#   perl plant.pl list TREE LIST...            room, name, tests and build targets, tab-separated
#   perl plant.pl plant TREE LIST NAME         changes the file in the tree, prints its path
#   perl plant.pl show TREE LIST NAME          prints the path, and the changed text after it
# "list" fails, and says why, if any of them could not be planted.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Basename qw(dirname);

my $here = dirname(abs_path(__FILE__));
require "$here/sources.pl";

my %isKey = map { $_ => 1 } qw(name file in tests build);

# A paragraph without a name holds what the ones after it don't say themselves.
sub ReadList
{
    my ($path) = @_;
    my ($room) = $path =~ m{([^/]+)\.txt$} or die "$path: no list\n";
    my (%default, @mutants);
    for my $paragraph (split(/\n\s*\n/, ReadAll($path))) {
        my %mutant;
        for my $line (grep { !/^#/ && /\S/ } split(/\n/, $paragraph)) {
            if ($line =~ /^([-+]) ?(.*)$/) {
                $mutant{$1} = defined $mutant{$1} ? "$mutant{$1}\n$2" : $2;
            } elsif ($line =~ /^(\w+): *(.*?) *$/ && $isKey{$1} && !defined $mutant{$1}) {
                $mutant{$1} = $2;
            } else {
                die "$path: not understood: $line\n";
            }
        }
        if (defined $mutant{name}) {
            push(@mutants, {%default, %mutant, room => $room});
        } else {
            %default = (%default, %mutant);
        }
    }
    return @mutants;
}

# The path and the text of the one file in which a mutant has its only place, with it planted.
sub MutatedFile
{
    my ($mutant, $texts) = @_;
    my @files = defined $mutant->{file} ? $mutant->{file} : sort keys %$texts;
    my ($count, $path, $start, $end) = (0);
    for my $file (@files) {
        my $text = $texts->{$file} // die "no such source: $file\n";
        my @places = defined $mutant->{in} ? PlacesIn($mutant->{in}, $mutant->{'-'}, $text)
                                           : PlacesOf($mutant->{'-'}, $text);
        ($path, $start, $end) = ($file, @{$places[0]}) if @places;
        $count += @places;
    }
    die "$count places, not one: $mutant->{'-'}\n" if $count != 1;
    my $text = $texts->{$path};
    my $mutated = substr($text, 0, $start) . $mutant->{'+'} . substr($text, $end);
    die "it changes nothing\n" if $mutated eq $text;
    return ($path, $mutated);
}

sub TextsOf
{
    my ($tree) = @_;
    return {map { $_ => ReadAll("$tree/$_") } SourcesOf($tree)};
}

sub CheckMutant
{
    my ($mutant, $texts) = @_;
    for my $key ('tests', '-', '+') {
        die "no line \"$key\"\n" unless defined $mutant->{$key};
    }
    MutatedFile($mutant, $texts);
}

sub ListMutants
{
    my ($tree, @lists) = @_;
    my ($failures, %seen) = (0);
    my $texts = TextsOf($tree);
    for my $mutant (map { ReadList($_) } @lists) {
        my $title = "$mutant->{room}: $mutant->{name}";
        eval { CheckMutant($mutant, $texts); 1 } or do {
            print STDERR "$title: $@";
            ++$failures;
            next;
        };
        if ($seen{$title}++) {
            print STDERR "$title: stands in the list twice\n";
            ++$failures;
        }
        my $build = defined $mutant->{build} ? $mutant->{build} : $mutant->{tests};
        print join("\t", $mutant->{room}, $mutant->{name}, $mutant->{tests}, $build), "\n";
    }
    return $failures == 0;
}

sub FindMutant
{
    my ($tree, $list, $name) = @_;
    my ($mutant) = grep { $_->{name} eq $name } ReadList($list) or die "no such mutant: $name\n";
    return MutatedFile($mutant, TextsOf($tree));
}

sub PlantMutant
{
    my ($tree, $path, $text) = @_;
    WriteAll("$tree/$path", $text);
    print "$path\n";
}

my ($verb, $tree, @rest) = @ARGV;
if ($verb eq 'list') {
    exit(ListMutants($tree, @rest) ? 0 : 1);
} elsif ($verb eq 'plant') {
    PlantMutant($tree, FindMutant($tree, @rest));
} elsif ($verb eq 'show') {
    print(join("\n", FindMutant($tree, @rest)));
} else {
    die "what is $verb?\n";
}
