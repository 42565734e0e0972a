# Makes one mutant as an object, links it into a test program and runs that. Required by
# automatic.pl and try_planted.pl.
use strict;
use warnings;
use Cwd qw(abs_path);
use Digest::SHA qw(sha1_hex);
use File::Basename qw(dirname);
use File::Compare qw(compare);
use File::Path qw(make_path);

my $hintCount = 12;
# A case that takes this share of its program's time runs after all quicker ones.
my $slowShare = 0.04;
my $memoryKilobytes = 8 * 1024 * 1024;
# A machine may be busy with other things: what a test takes is counted in its own time, and the
# wall's clock only ends one that sleeps.
my $wallSeconds = 600;
# A compilation that takes longer is a template without an end.
my $compileSeconds = 12;

# The digest of files, which the order of their includes leaves as it is.
sub DigestOf
{
    my (@paths) = @_;
    return sha1_hex(join("\n", map { ReadAll($_) =~ s/^#include .*\n//gmr } @paths));
}

# Reads how the objects of the library and the programs are made, and which objects a file goes
# into.
sub ReadBuild
{
    my ($binaries, @wanted) = @_;
    my %build = (compile => {}, link => {}, objectsOf => {});
    for (split(/\n/, `ninja -C "$binaries" -t commands @wanted`)) {
        s/^\S*ccache\s+//;
        if (/pelkraft_objects\.dir/ && s/ -MD -MT \S+ -MF \S+ -o (\S+) -c (\S+)//) {
            $build{compile}{$1} = {command => $_, source => $2};
        } elsif (/^: && (.* -o \S*\/(test_\w+) .*) && :$/) {
            $build{link}{$2} = $1;
        }
    }
    my ($object, %absolute);
    for (split(/\n/, `ninja -C "$binaries" -t deps`)) {
        if (/^(\S+): #deps/) {
            $object = $build{compile}{$1} ? $1 : undef;
        } elsif (defined $object && m{^ +(?!/usr/)(\S+)$}) {
            my $file = $1;
            my $path = $absolute{$file} //=
                abs_path($file =~ m{^/} ? $file : "$binaries/$file") // $file;
            push(@{$build{objectsOf}{$path}}, $object);
        }
    }
    return \%build;
}

# Runs a command, which ends after so many seconds of its own; true if it succeeded.
sub Run
{
    my ($directory, $log, $seconds, $command) = @_;
    my $child = fork() // die "fork: $!\n";
    if ($child == 0) {
        chdir($directory) or die "$directory: $!\n";
        alarm($wallSeconds);
        exec('/bin/sh', '-c', "ulimit -c 0; ulimit -t $seconds; ulimit -v $memoryKilobytes
            exec >\"$log\" 2>&1; exec $command");
    }
    waitpid($child, 0);
    return $? == 0;
}

# Finds the cases of a program, those that take most of its time, and how long either half of them
# may take, which is some times longer than it does.
sub MeasureProgram
{
    my ($binaries, $work, $program, $path) = @_;
    my ($before, $log) = ((times)[2], "$work/$program.log");
    Run($binaries, $log, 600, "./$path") or die "$program fails without a mutant\n";
    my $seconds = (times)[2] - $before;
    my %time = ReadAll($log) =~ /^\[ *OK \] (\S+) \((\d+) ms\)$/mg;
    my $sum = 1;
    $sum += $_ for values %time;
    my @slow = sort grep { $time{$_} > $slowShare * $sum } keys %time;
    my $quick = $sum;
    $quick -= $time{$_} for @slow;
    return {path => $path, cases => \%time, slow => {map { $_ => 1 } @slow},
            quickLimit => 2 + int(3 * $seconds * $quick / $sum), limit => 3 + int(2 * $seconds)};
}

sub MeasurePrograms
{
    my ($context, @wanted) = @_;
    for my $program (@wanted) {
        my ($path) = $context->{build}{link}{$program} =~ / -o (\S+)/;
        $context->{known}{$program} //=
            MeasureProgram($context->{binaries}, $context->{work}, $program, $path);
    }
}

# The case that failed first, or that was running when the program ended.
sub FailedCase
{
    my ($log) = @_;
    my $text = ReadAll($log);
    return $1 if $text =~ /^\[ *FAILED *\] (\S+?),? /m;
    return ($text =~ /^\[ *RUN *\] (\S+)/mg)[-1] // 'start';
}

# Compiles one of the library's objects into a directory, from the text that stands there if it
# is the one with the mutant.
sub Compile
{
    my ($context, $object, $mutant, $output) = @_;
    my $own = $context->{own};
    my ($command, $source) = @{$context->{build}{compile}{$object}}{'command', 'source'};
    if (defined $mutant) {
        $command =~ s/ -I/ -I$own\/source -I/;
        $source = "$own/source/$mutant->{file}" if $source eq "$context->{tree}/$mutant->{file}";
    }
    make_path(dirname($output));
    return Run($context->{binaries}, "$own/compile.log", $compileSeconds,
               "$command -w -frandom-seed=0 -o $output -c $source");
}

# The objects that differ from the true ones; nothing if they can't be compiled.
sub CompileMutant
{
    my ($context, $mutant) = @_;
    my $own = $context->{own};
    my $mutated = "$own/source/$mutant->{file}";
    WriteAll($mutated, $mutant->{text});
    my %changed;
    for my $object (@{$context->{build}{objectsOf}{"$context->{tree}/$mutant->{file}"}}) {
        my ($original, $output) = ("$own/original/$object", "$own/mutant/$object");
        -f $original || Compile($context, $object, undef, $original)
            or die "$object does not compile\n";
        if (!Compile($context, $object, $mutant, $output)) {
            unlink($mutated);
            return undef;
        }
        $changed{$object} = $output if compare($original, $output) != 0;
    }
    unlink($mutated);
    return \%changed;
}

# The mutated objects come first: of an inline function in several objects the first is taken.
sub LinkMutant
{
    my ($context, $program, $changed) = @_;
    my $output = "$context->{own}/$program";
    my $command = $context->{build}{link}{$program};
    $command =~ s/ -o \S+/ -o $output/;
    $command =~ s/ \Q$_\E(?= )// for keys %$changed;
    my $objects = join(' ', sort values %$changed);
    $command =~ s/ (\S+\.o)(?= )/ $objects $1/;
    return Run($context->{binaries}, "$context->{own}/link.log", 120, $command) ? $output : undef;
}

# Those cases first that have caught a mutant of this file before, then the quick ones.
sub TryProgram
{
    my ($context, $mutant, $program, $path) = @_;
    my $known = $context->{known}{$program};
    my $hints = $context->{hints}{"$program $mutant->{file}"} //= [];
    my $log = "$context->{own}/test.log";
    my $slow = join(':', sort keys %{$known->{slow}});
    my @rounds = (["-$slow", 'quickLimit']);
    push(@rounds, [$slow, 'limit']) if $slow ne '';
    my @quick = grep { !$known->{slow}{$_} } @$hints;
    unshift(@rounds, [join(':', @quick), 'quickLimit']) if @quick;
    for my $round (@rounds) {
        my ($filter, $limit) = @$round;
        next if Run($context->{binaries}, $log, $known->{$limit},
                    "env GTEST_FAIL_FAST=1 $path --gtest_filter='$filter'");
        my $case = FailedCase($log);
        @$hints = ($case, grep { $_ ne $case } @$hints);
        splice(@$hints, $hintCount) if @$hints > $hintCount;
        return $case;
    }
    return undef;
}

# One object code has one verdict of the same programs.
sub TryMutant
{
    my ($context, $mutant, @programs) = @_;
    my $changed = CompileMutant($context, $mutant);
    return ('stillborn', '') if !defined $changed;
    return ('equal', '') if !%$changed;
    my $code = DigestOf(map { $changed->{$_} } sort keys %$changed);
    my $verdict = $context->{verdictOf}{"@programs $code"} //=
        [TryObjects($context, $mutant, $changed, @programs)];
    return @$verdict;
}

sub TryObjects
{
    my ($context, $mutant, $changed, @programs) = @_;
    for my $program (@programs) {
        my $path = LinkMutant($context, $program, $changed) // return ('stillborn', '');
        my $case = TryProgram($context, $mutant, $program, $path);
        return ('caught', "$program $case") if defined $case;
    }
    return ('survived', '');
}

# The mutants of a file together: they have their objects and their hints in common.
sub ShareOut
{
    my ($workers, @mutants) = @_;
    my %ofFile;
    push(@{$ofFile{$_->{file}}}, $_) for @mutants;
    my @shares = map { [] } 1 .. $workers;
    for my $file (sort { @{$ofFile{$b}} <=> @{$ofFile{$a}} || $a cmp $b } keys %ofFile) {
        my ($least) = sort { @$a <=> @$b } @shares;
        push(@$least, @{$ofFile{$file}});
    }
    return @shares;
}

# Calls work(context, number, mutants...) in as many processes as there are processors.
sub RunWorkers
{
    my ($context, $mutants, $work) = @_;
    my @shares = ShareOut(`nproc` + 0, @$mutants);
    my (@children, $failures);
    for my $number (0 .. $#shares) {
        my $child = fork() // die "fork: $!\n";
        if ($child == 0) {
            $| = 1;
            $context->{own} = "$context->{work}/worker$number";
            make_path($context->{own});
            exit(eval { $work->($context, $number, @{$shares[$number]}); 1 } ? 0
                                                                            : print(STDERR $@));
        }
        push(@children, $child);
    }
    for my $child (@children) {
        waitpid($child, 0);
        ++$failures if $? != 0;
    }
    die "a worker ended early\n" if $failures;
}

1;
