# Makes mutants by rule, one small change each, and sees which of them the tests let pass.
#   perl automatic.pl check TREE                       is survivors.list of use for this tree?
#   perl automatic.pl try TREE BINARIES WORK [FILE...] tries them all, or those of these files
# BINARIES has been built from TREE by Ninja, tests too, and passes them. A survivor that
# survivors.list does not explain, or an entry of it that is none, fails the run. WORK keeps what
# each mutant came to, so that an interrupted run goes on; remove it to have all tried again.
use strict;
use warnings;
use Cwd qw(abs_path);
use Digest::SHA qw(sha1_hex);
use File::Basename qw(dirname);
use File::Path qw(make_path);

my $here = dirname(abs_path(__FILE__));
require "$here/candidates.pl";
require "$here/sources.pl";
require "$here/trial.pl";

# The programs that see a room, the most specific first.
my %programs = (
    rows => ['test_rows', 'test_conversions'],
    plan => ['test_plan', 'test_rows', 'test_conversions', 'test_direct_road'],
    direct => ['test_direct_samples', 'test_direct_pixels', 'test_direct_split_merge',
               'test_direct_road'],
    portal => ['test_portal', 'test_conversions', 'test_rows'],
    converters => ['test_converters', 'test_conversions', 'test_portal'],
    chunks => ['test_chunks', 'test_conversions', 'test_portal'],
    pattern => ['test_pattern'],
);

my @rooms = sort keys %programs;
my $wantedPercent = 95;
# One candidate of so many is tried, chosen by its own text, so that another change of the file
# chooses no other ones.
my $share = 12;

sub IdOf
{
    my ($mutant) = @_;
    return join("\n", map { $mutant->{$_} } qw(file at - +));
}

sub Describe
{
    my ($mutant) = @_;
    my $place = join('', map { defined $mutant->{$_} ? "$_: $mutant->{$_}\n" : '' } qw(file at));
    return "$place- $mutant->{'-'}\n+ $mutant->{'+'}\n";
}

# Says by id of the mutant why no test can tell it, and how many entries fit none or several of the
# candidates. A paragraph without a change sets what those after it leave out.
sub ReadSurvivors
{
    my ($path, $candidates) = @_;
    my (%default, %reason, %ofChange);
    push(@{$ofChange{"$_->{'-'}\n$_->{'+'}"}}, $_) for @$candidates;
    my $faults = 0;
    for my $paragraph (split(/\n\s*\n/, ReadAll($path))) {
        my %entry;
        for my $line (grep { !/^#/ && /\S/ } split(/\n/, $paragraph)) {
            $line =~ /^(?:(file|at|why): *|([-+]) ?)(.*?) *$/ or die "$path: strange: $line\n";
            my $key = $1 // $2;
            $entry{$key} = defined $entry{$key} && $key eq 'why' ? "$entry{$key} $3" : $3;
        }
        %entry = (%default, %entry);
        if (!defined $entry{'-'}) {
            %default = %entry;
            next;
        }
        my @fits = grep { ($entry{file} // $_->{file}) eq $_->{file}
                          && ($entry{at} // $_->{at}) == $_->{at} }
                   @{$ofChange{"$entry{'-'}\n$entry{'+'}"} // []};
        if (@fits != 1) {
            print STDERR scalar(@fits) . " candidates, not one:\n" . Describe(\%entry) . "\n";
            ++$faults;
            next;
        }
        my $id = IdOf($fits[0]);
        die "$path: no reason:\n" . Describe(\%entry) if ($entry{why} // '') eq '';
        die "$path: twice:\n" . Describe(\%entry) if defined $reason{$id};
        $reason{$id} = \%entry;
    }
    return (\%reason, $faults);
}

sub RoomOf
{
    my ($path) = @_;
    return $path =~ m{^([^/]+)/} ? $1 : '';
}

# The sources of these rooms.
sub FilesOf
{
    my ($tree, @wanted) = @_;
    return grep { my $path = $_; grep { RoomOf($path) eq $_ } @wanted } SourcesOf($tree);
}

sub ListMutants
{
    my ($tree) = @_;
    my @mutants = map { FindMutants($_, ReadAll("$tree/$_")) } FilesOf($tree, @rooms);
    my @chosen = grep { hex(substr(sha1_hex(IdOf($_)), 0, 6)) % $share == 0 } @mutants;
    return (\@chosen, \@mutants);
}

# Measures the programs that see these rooms, and says by room what verdicts on survivors hang on.
sub Measure
{
    my ($context, @tried) = @_;
    MeasurePrograms($context, map { @{$programs{$_}} } @tried);
    for my $room (@tried) {
        my @paths = map { $context->{known}{$_}{path} } @{$programs{$room}};
        $context->{tests}{$room} = DigestOf(map { "$context->{binaries}/$_" } @paths);
    }
}

# Reads what is still true of earlier runs: a survivor may not survive other tests, and one that
# was caught stays so while the case that did it is there.
sub ReadRecords
{
    my ($context) = @_;
    my %record;
    for my $line (map { split(/\n/, ReadAll($_)) } glob("$context->{work}/records/*")) {
        my ($key, $verdict, $detail, $tests) = split(/\t/, $line);
        if ($verdict eq 'caught') {
            my ($program, $case) = split(/ /, $detail);
            next unless $case eq 'start' || exists $context->{known}{$program}{cases}{$case};
        }
        next if $verdict eq 'survived' && !grep { $tests eq $_ } values %{$context->{tests}};
        $record{$key} = $verdict;
    }
    return \%record;
}

sub Work
{
    my ($context, $number, @mutants) = @_;
    make_path("$context->{work}/records");
    open(my $records, '>>', "$context->{work}/records/$number") or die "records: $!\n";
    $records->autoflush(1);
    for my $mutant (@mutants) {
        my @own = @{$programs{RoomOf($mutant->{file})}};
        my ($verdict, $detail) = TryMutant($context, $mutant, @own);
        my $tests = $context->{tests}{RoomOf($mutant->{file})};
        print $records join("\t", $mutant->{key}, $verdict, $detail, $tests), "\n";
        print "survived:\n" . Describe($mutant) . "\n" if $verdict eq 'survived';
    }
}

sub TryAll
{
    my ($context, @mutants) = @_;
    my $record = ReadRecords($context);
    my @rest = grep { !defined $record->{$_->{key}} } @mutants;
    printf("%d candidates, %d of them tried before\n", scalar(@mutants), @mutants - @rest);
    RunWorkers($context, \@rest, \&Work);
    $record = ReadRecords($context);
    return map { $record->{$_->{key}} } @mutants;
}

sub Summarize
{
    my ($mutants, $verdicts, $reason, $total) = @_;
    my %count = (caught => 0, survived => 0, equal => 0, stillborn => 0);
    my (@survivors, $unexplained);
    for my $i (0 .. $#$mutants) {
        ++$count{$verdicts->[$i]};
        push(@survivors, $mutants->[$i]) if $verdicts->[$i] eq 'survived';
    }
    for my $mutant (grep { !defined $reason->{IdOf($_)} } @survivors) {
        print "unexplained survivor:\n" . Describe($mutant) . "\n";
        ++$unexplained;
    }
    # The list may hold survivors among those that were not chosen.
    my %survives = map { IdOf($_) => 1 } @survivors;
    my @stale = grep { $reason->{IdOf($_)} && !$survives{IdOf($_)} } @$mutants;
    print "no survivor any more:\n" . Describe($_) . "\n" for @stale;
    my $tried = $count{caught} + $count{survived};
    my $percent = $tried == 0 ? 100 : 100 * $count{caught} / $tried;
    printf("%d leave the object code as it is, %d don't compile\n", $count{equal},
           $count{stillborn});
    printf("automatic %d of %d caught (%.1f %%), %d survivors%s, one of %d of %d candidates\n",
           $count{caught}, $tried, $percent, $count{survived},
           $unexplained ? ", $unexplained of them unexplained" : ' explained', $share, $total);
    return !$unexplained && !@stale && $percent >= $wantedPercent;
}

sub Try
{
    my ($tree, $binaries, $work, @files) = @_;
    make_path($work);
    ($tree, $binaries, $work) = map { abs_path($_) } ($tree, $binaries, $work);
    my $build = ReadBuild($binaries, map { @$_ } values %programs);
    my %context = (tree => $tree, binaries => $binaries, work => $work, build => $build);
    my %headerDigest = map { $_ => DigestOf(map { "$tree/$_" } grep { /\.h$/ }
                                            FilesOf($tree, 'common', $_)) } @rooms;
    my %isChosen = map { $_ => 1 } @files;
    # Those that are not built here, such as another system's, have no object.
    my ($chosen, $candidates) = ListMutants($tree);
    my ($reason) = ReadSurvivors("$here/survivors.list", $candidates);
    my @mutants = grep { $build->{objectsOf}{"$tree/$_->{file}"} } @$chosen;
    @mutants = grep { $isChosen{$_->{file}} } @mutants if @files;
    die "automatic: none of the chosen candidates can be built here\n" if !@mutants;
    my %digest = map { $_->{file} => 1 } @mutants;
    $digest{$_} = $headerDigest{RoomOf($_)} . DigestOf("$tree/$_") for keys %digest;
    $_->{key} = sha1_hex($digest{$_->{file}} . IdOf($_)) for @mutants;
    my %isTried = map { RoomOf($_->{file}) => 1 } @mutants;
    Measure(\%context, sort keys %isTried);
    my @verdicts = TryAll(\%context, @mutants);
    return Summarize(\@mutants, \@verdicts, $reason, scalar(@$candidates));
}

sub Check
{
    my ($tree) = @_;
    my ($chosen, $candidates) = ListMutants(abs_path($tree));
    my ($reason, $faults) = ReadSurvivors("$here/survivors.list", $candidates);
    printf("automatic: %d of %d candidates chosen, %d survivors explained\n", scalar(@$chosen),
           scalar(@$candidates), scalar(keys %$reason));
    return $faults == 0;
}

my ($verb, @rest) = @ARGV;
my %verbs = (check => \&Check, try => \&Try);
die "what is " . ($verb // 'nothing') . "?\n" unless defined $verb && $verbs{$verb};
exit($verbs{$verb}->(@rest) ? 0 : 1);
