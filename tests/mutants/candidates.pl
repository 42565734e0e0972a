# Finds what can be changed in a C++ text, one small change at a time: operators, constants, and
# statements of one line. Relies on the formatter: an operator between two operands stands between
# white space, and nothing else that looks like it does. Required by automatic.pl.
use strict;
use warnings;

my $hidden = "\x01";

# An operator becomes each of these, one after the other.
my %otherOperators = (
    '+' => ['-'], '-' => ['+'], '*' => ['/'], '/' => ['*'], '%' => ['/'],
    '<<' => ['>>'], '>>' => ['<<'], '&' => ['|'], '|' => ['&'], '^' => ['&'],
    '<' => ['<=', '>='], '<=' => ['<', '>'], '>' => ['>=', '<='], '>=' => ['>', '<'],
    '==' => ['!='], '!=' => ['=='], '&&' => ['||'], '||' => ['&&'],
    '+=' => ['-='], '-=' => ['+='], '*=' => ['/='], '/=' => ['*='], '%=' => ['/='],
    '<<=' => ['>>='], '>>=' => ['<<='], '|=' => ['&='], '&=' => ['|='], '^=' => ['&='],
);
my $anyOperator =
    join('|', map { quotemeta } sort { length($b) <=> length($a) } keys %otherOperators);

sub Hide
{
    my ($text) = @_;
    $text =~ s/[^\n]/$hidden/g;
    return $text;
}

# The text with as many bytes, in which comments are blank, and literal texts, directives and
# template arguments hidden.
sub MaskedText
{
    my ($text) = @_;
    $text =~ s{(//[^\n]*|/\*.*?\*/)|("(?:\\.|[^"\\\n])*"|(?<!\w)'(?:\\.|[^'\\\n])+')}
              {defined $1 ? $1 =~ s/[^\n]/ /gr : Hide($2)}gse;
    $text =~ s/^([ \t]*#(?:\\\n|[^\n])*)/Hide($1)/gme;
    $text =~ s/((?:(?<=\w)|(?<=\btemplate ))(<(?:[^<>;{}]|->|(?2))*>))/Hide($1)/ge;
    return $text;
}

sub OtherNumbers
{
    my ($number) = @_;
    my ($digits, $suffix) = $number =~ /^(0[xX][0-9A-Fa-f']+|[0-9']+)([uUlL]*)$/ or return ();
    $digits =~ tr/'//d;
    my $isHex = $digits =~ /^0[xX]/;
    # Words of 64 bits are meant.
    no warnings 'portable';
    my $value = $isHex ? hex($digits) : $digits + 0;
    my @values = $value == 0 ? (1) : ($value + 1, $value - 1);
    return map { sprintf($isHex ? '0x%X%s' : '%d%s', $_, $suffix) } @values;
}

# All changes as [offset, length, replacement].
sub FindChanges
{
    my ($text) = @_;
    my $masked = MaskedText($text);
    my @changes;
    while ($masked =~ /(?<=\s)($anyOperator)(?=\s)/g) {
        push(@changes, [$-[1], length($1), $_]) for @{$otherOperators{$1}};
    }
    while ($masked =~ /(\+\+|--)/g) {
        push(@changes, [$-[1], 2, $1 eq '++' ? '--' : '++']);
    }
    while ($masked =~ /(?<![\w)\]\x01!])(!(?!=)|-(?=[\w(]))(?<!--)(?!-)/g) {
        push(@changes, [$-[1], 1, '']);
    }
    while ($masked =~ /(?<![\w.\x01'])(\d[\w']*)(?![\w.])/g) {
        my ($offset, $number) = ($-[1], $1);
        push(@changes, [$offset, length($number), $_]) for OtherNumbers($number);
    }
    while ($masked =~ /\b(true|false)\b/g) {
        push(@changes, [$-[1], length($1), $1 eq 'true' ? 'false' : 'true']);
    }
    # A condition without an operator of its own is turned round.
    while ($masked =~ /\bif (?:constexpr )?\(([\w.]+(?:->[\w.]+)*(?:\([^()]*\))?)\)\s/g) {
        push(@changes, [$-[1], length($1), '!' . substr($text, $-[1], length($1))]);
    }
    my $place = qr/\*?[A-Za-z_][\w.:\[\]\x01>-]*(?:\([^()\n]*\)[\w.\[\]>-]*)*/;
    while ($masked =~ /^[ ]+(?!(?:return|else|case|default|using)\b)
                       ($place[ ](?:[-+*\/|&^%]|<<|>>)?=[ ][^\n]*;|$place\([^\n]*\);
                        |throw[ ]\w+;|throw;|break;|continue;|return;)[ ]*$/gmx) {
        push(@changes, [$-[1], length($1), ';']);
    }
    return sort { $a->[0] <=> $b->[0] || $a->[2] cmp $b->[2] } @changes;
}

sub Trimmed
{
    my ($line) = @_;
    return $line =~ s/^\s+|\s+$//gr;
}

# The mutants of one file: its line and what takes its place, both trimmed, the number of that
# line among its equals, and the whole text.
sub FindMutants
{
    my ($path, $text) = @_;
    my (@mutants, %seen);
    for my $change (FindChanges($text)) {
        my ($offset, $length, $replacement) = @$change;
        my $start = rindex($text, "\n", $offset - 1) + 1;
        my $end = index($text, "\n", $offset);
        my $line = substr($text, $start, $end - $start);
        my $mutatedLine = $line;
        substr($mutatedLine, $offset - $start, $length) = $replacement;
        my ($before, $after) = (Trimmed($line), Trimmed($mutatedLine));
        my $number = 1 + grep { Trimmed($_) eq $before } split(/\n/, substr($text, 0, $start));
        next if $seen{"$number\n$before\n$after"}++;
        my $mutatedText = $text;
        substr($mutatedText, $offset, $length) = $replacement;
        push(@mutants, {file => $path, '-' => $before, '+' => $after, at => $number,
                        text => $mutatedText});
    }
    return @mutants;
}

1;
