# Tries planted defects the quick way: compiles their objects alone and links them into the tests,
# on as many processors as there are.
#   perl try_planted.pl TREE BINARIES WORK RECORD <LIST
# LIST is what plant.pl lists. Each one caught becomes a line of RECORD, a key and the test that did
# it; scripts/mutants.sh looks for that key, and builds and tests all others.
use strict;
use warnings;
use Cwd qw(abs_path);
use Digest::SHA qw(sha1_hex);
use File::Basename qw(dirname);
use File::Path qw(make_path);

my $here = dirname(abs_path(__FILE__));
require "$here/sources.pl";
require "$here/trial.pl";

# A planted file as plant.pl shows it. The key leaves out the includes, which may be put in order.
sub ShowMutant
{
    my ($tree, $room, $name, $tests) = @_;
    open(my $pipe, '-|', $^X, "$here/plant.pl", 'show', $tree, "$here/$room.txt", $name)
        or die "plant.pl: $!\n";
    my $shown = do { local $/; <$pipe> };
    close($pipe) or die "plant.pl can't plant $name\n";
    my ($file, $text) = split(/\n/, $shown, 2);
    my $key = sha1_hex("$room: $name\n" . $text =~ s/^#include.*\n//gmr);
    return {file => $file, text => $text, title => "$room: $name", key => $key,
            programs => [split(' ', $tests)]};
}

sub Work
{
    my ($context, $number, @mutants) = @_;
    open(my $record, '>>', $context->{record}) or die "$context->{record}: $!\n";
    $record->autoflush(1);
    for my $mutant (@mutants) {
        my ($verdict, $detail) = TryMutant($context, $mutant, @{$mutant->{programs}});
        my ($program, $case) = split(/ /, $detail);
        print $record "$mutant->{key} $program ($case)\n" if $verdict eq 'caught';
        print "$mutant->{title}: $verdict", $verdict eq 'caught' ? " by $program ($case)\n" : "\n";
    }
}

my ($tree, $binaries, $work, $record) = @ARGV;
make_path($work);
($tree, $binaries, $work, $record) = map { abs_path($_) } ($tree, $binaries, $work, $record);
my %known = map { (split(/ /))[0] => 1 } split(/\n/, ReadAll($record));
my @mutants;
while (my $line = <STDIN>) {
    my ($room, $name, $tests) = split(/\t/, $line);
    my $mutant = ShowMutant($tree, $room, $name, $tests);
    push(@mutants, $mutant) unless $known{$mutant->{key}};
}

# Those of which all objects are the library's own, and all tests programs that hold these.
my %isWanted = map { $_ => 1 } map { @{$_->{programs}} } @mutants;
my $build = ReadBuild($binaries, keys %isWanted);
my %context = (tree => $tree, binaries => $binaries, work => $work, record => $record,
               build => $build);
my %link = %{$build->{link}};
my %holds = map { $_ => 1 } grep { $link{$_} =~ /pelkraft_objects/ } keys %link;
@mutants = grep { $build->{objectsOf}{"$tree/$_->{file}"} } @mutants;
@mutants = grep { !grep { !$holds{$_} } @{$_->{programs}} } @mutants;
MeasurePrograms(\%context, sort grep { $holds{$_} } keys %isWanted);
RunWorkers(\%context, \@mutants, \&Work);
