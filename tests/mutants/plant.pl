# Reads the lists of planted defects beside it, and plants one of them in a tree.
#   perl plant.pl list TREE LIST...            room, name, tests and build targets, tab-separated
#   perl plant.pl plant TREE LIST NAME         changes the file in the tree, prints its path
#   perl plant.pl show TREE LIST NAME          prints the path, and the changed text behind it
# "list" fails, and says why, if any of them could not be planted. Needs no module.
use strict;
use warnings;

my %isKey = map { $_ => 1 } qw(name file in tests build);

sub ReadAll
{
    my ($path) = @_;
    open(my $file, '<', $path) or die "$path: $!\n";
    local $/;
    my $text = <$file>;
    close($file);
    return $text;
}

# A paragraph without a name holds what the ones behind it don't say themselves.
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

# Any white space stands for any other, so that a list outlives a formatter.
sub PatternOf
{
    my ($text) = @_;
    return join('\s+', map { quotemeta } split(' ', $text));
}

# Where the only place of a text begins and ends within a stretch of another.
sub FindOnly
{
    my ($what, $text, $start, $end) = @_;
    my $pattern = PatternOf($what);
    die "nothing to look for\n" if $pattern eq '';
    my $stretch = substr($text, $start, $end - $start);
    my @places;
    push(@places, [$start + $-[0], $start + $+[0]]) while $stretch =~ /$pattern/g;
    die scalar(@places) . " places, not one: $what\n" if @places != 1;
    return @{$places[0]};
}

sub MutatedText
{
    my ($mutant, $text) = @_;
    my ($start, $end) = (0, length($text));
    if (defined $mutant->{in}) {
        ($start) = FindOnly($mutant->{in}, $text, 0, $end);
        my $close = index($text, "\n}", $start);
        $end = $close if $close >= 0;
    }
    ($start, $end) = FindOnly($mutant->{'-'}, $text, $start, $end);
    return substr($text, 0, $start) . $mutant->{'+'} . substr($text, $end);
}

sub CheckMutant
{
    my ($mutant, $tree) = @_;
    for my $key ('file', 'tests', '-', '+') {
        die "no line \"$key\"\n" unless defined $mutant->{$key};
    }
    my $text = ReadAll("$tree/$mutant->{file}");
    die "it changes nothing\n" if MutatedText($mutant, $text) eq $text;
}

sub ListMutants
{
    my ($tree, @lists) = @_;
    my ($failures, %seen) = (0);
    for my $mutant (map { ReadList($_) } @lists) {
        my $title = "$mutant->{room}: $mutant->{name}";
        eval { CheckMutant($mutant, $tree); 1 } or do {
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
    return ($mutant->{file}, MutatedText($mutant, ReadAll("$tree/$mutant->{file}")));
}

sub PlantMutant
{
    my ($tree, $path, $text) = @_;
    open(my $file, '>', "$tree/$path") or die "$path: $!\n";
    print $file $text;
    close($file) or die "$path: $!\n";
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
