# Completion of pelkraft for fish.
set -la verbs check
set -la verbs convert
set -la verbs coverage
set -la verbs info
set -la verbs join
set -la verbs mask
set -la verbs pattern
set -la verbs preview
set -la verbs simulate
set -la verbs split
set -l none "not __fish_seen_subcommand_from $verbs"
set -l any "__fish_seen_subcommand_from $verbs"
set -l check '__fish_seen_subcommand_from check'
set -l convert '__fish_seen_subcommand_from convert'
set -l coverage '__fish_seen_subcommand_from coverage'
set -l info '__fish_seen_subcommand_from info'
set -l join '__fish_seen_subcommand_from join'
set -l mask '__fish_seen_subcommand_from mask'
set -l patternVerbs diff explain fix lint plot
set -l inPattern '__fish_seen_subcommand_from pattern; and __fish_seen_subcommand_from'
set -l pattern "__fish_seen_subcommand_from pattern; and not __fish_seen_subcommand_from $patternVerbs"
set -l preview '__fish_seen_subcommand_from preview'
set -l simulate '__fish_seen_subcommand_from simulate'
set -l split '__fish_seen_subcommand_from split'

complete -c pelkraft -s h -l help -d 'Print the help and exit'
complete -c pelkraft -n $none -l version -d 'Print the version and exit'
complete -c pelkraft -n $none -l buildinfo -d 'Print how the program was built and exit'
complete -c pelkraft -n $none -f -a check -d 'Look for what is wrong with TIFF files'
complete -c pelkraft -n $none -f -a convert -d 'Convert the rows of a TIFF file'
complete -c pelkraft -n $none -f -a coverage -d 'Measure how much ink lies where'
complete -c pelkraft -n $none -f -a info -d 'Show what TIFF files hold'
complete -c pelkraft -n $none -f -a join -d 'Join the plates of a page'
complete -c pelkraft -n $none -f -a mask -d 'Verify or export the mask of the dither'
complete -c pelkraft -n $none -f -a pattern -d 'Explain and check a dot-pattern text'
complete -c pelkraft -n $none -f -a preview -d 'Show the inks of a TIFF file as a PNG'
complete -c pelkraft -n $none -f -a simulate -d 'Apply a dot pattern to a TIFF file'
complete -c pelkraft -n $none -f -a split -d 'Split a page into a plate for each ink'

complete -c pelkraft -n $any -s q -l quiet -d 'Tell errors only'
complete -c pelkraft -n $any -s v -l verbose -d 'Tell what was done, and the pages of warnings'
complete -c pelkraft -n $any -l progress -x -a 'auto never json' -d 'Form of the progress'
complete -c pelkraft -n $any -l color -x -a 'auto never' -d 'Colours in messages'
complete -c pelkraft -n $any -l threads -x -d 'Threads that share the work'
complete -c pelkraft -n $any -l explain -d 'Print the plan, and how long the work took'
complete -c pelkraft -n $any -l json -d 'Print JSON, for programs'
complete -c pelkraft -n $any -l dry-run -d 'Check everything beforehand, and write nothing'

complete -c pelkraft -n $check -l rules -x -d 'Rules to check by; list shows them'
complete -c pelkraft -n $check -l format -x -a 'text json sarif' -d 'Form of the findings'

complete -c pelkraft -n $convert -l layout -x -a 'interleaved planar' -d 'Layout of the samples'
complete -c pelkraft -n $convert -l bits -x -a '1 2 8 16' -d 'Bits per sample'
complete -c pelkraft -n $convert -l channels -x -d 'New channels, by number or name of old ones'
complete -c pelkraft -n $convert -l repeat -x -a '1 2 4' -d 'Write each pixel this many times'
complete -c pelkraft -n $convert -l mirror -d 'Write each row from its last pixel to its first'
complete -c pelkraft -n $convert -l flip -d 'Write the rows from the last to the first'
complete -c pelkraft -n $convert -l invert -d 'Turn samples, and tags with them'
complete -c pelkraft -n $convert -l tones -x -a 'scale raw' -d 'What samples below 8 bits mean'
complete -c pelkraft -n $convert -l portable -d 'Take the portable road of the library'
complete -c pelkraft -n $convert -l dot-range -x -a 'keep scale full' -d 'Samples of no and full ink'
for verb in $convert $simulate
    complete -c pelkraft -n $verb -l page -x -d 'Pages to take: 1,3-5'
    complete -c pelkraft -n $verb -l polarity -x -a 'auto ink-high ink-low' -d 'Which samples are ink'
    complete -c pelkraft -n $verb -l spool-limit -x -d 'Bytes of a pipe to keep in a file'
    complete -c pelkraft -n $verb -l compress -x -a 'none lzw zip' -d 'Compression of the new file'
    complete -c pelkraft -n $verb -l no-clobber -d 'Refuse to overwrite a file'
end

complete -c pelkraft -n $coverage -l limit -x -d 'Percent of all inks that a pixel may have'
complete -c pelkraft -n $coverage -l window -x -d 'Side of the window, in mm, in or px'
complete -c pelkraft -n $coverage -l map -r -F -d 'Also write a PNG of where the ink lies'
complete -c pelkraft -n $coverage -l no-clobber -d 'Refuse to overwrite a file'
complete -c pelkraft -n $coverage -l page -x -d 'Pages to take, as in 1,3-5'
complete -c pelkraft -n $coverage -l polarity -x -a 'auto ink-high ink-low' -d 'Whether high samples are much ink'
complete -c pelkraft -n $coverage -l dot-range -x -d 'Samples of no and of full ink, LO,HI or keep'
complete -c pelkraft -n $coverage -l spool-limit -x -d 'Bytes of a pipe that may be kept'

complete -c pelkraft -n $info -l page -x -d 'Pages to take, as in 1,3-5'
complete -c pelkraft -n $info -l polarity -x -a 'auto ink-high ink-low' -d 'Whether high samples are much ink'
complete -c pelkraft -n $info -l dot-range -x -d 'Samples of no and of full ink, LO,HI or keep'
complete -c pelkraft -n $info -l spool-limit -x -d 'Bytes of a pipe that may be kept'
complete -c pelkraft -n $info -l stats -d 'Count the samples of each channel'

complete -c pelkraft -n $join -l order -x -d 'Inks that come first'
complete -c pelkraft -n $join -l page -x -d 'Pages to take, as in 1,3-5'
complete -c pelkraft -n $join -l polarity -x -a 'auto ink-high ink-low' -d 'Whether high samples are much ink'
complete -c pelkraft -n $join -l dot-range -x -d 'Samples of no and of full ink, LO,HI or keep'
complete -c pelkraft -n $join -l spool-limit -x -d 'Bytes of a pipe that may be kept'
complete -c pelkraft -n $join -l compress -x -a 'none lzw zip' -d 'Compression of the new file'
complete -c pelkraft -n $join -l no-clobber -d 'Refuse to overwrite a file'

complete -c pelkraft -n $mask -l verify -d 'Make the mask anew and compare it'
complete -c pelkraft -n $mask -l export -x -a 'raw16' -d 'Write the ranks row by row'
complete -c pelkraft -n $mask -l no-clobber -d 'Refuse to overwrite a file'

complete -c pelkraft -n $pattern -l plot -r -F -d 'Draw what the pattern does as SVG'
complete -c pelkraft -n $pattern -l no-clobber -d 'Refuse to overwrite a file'
complete -c pelkraft -n $pattern -a diff -d 'Compare what two pattern texts do'
complete -c pelkraft -n $pattern -a explain -d 'Show all that is known of pattern texts'
complete -c pelkraft -n $pattern -a fix -d 'Take the safe hints'
complete -c pelkraft -n $pattern -a lint -d 'Show what is wrong or odd about pattern texts'
complete -c pelkraft -n $pattern -a plot -d 'Draw what pattern texts do, as SVG'
complete -c pelkraft -n "$inPattern explain lint" -l format -x -a 'text json sarif' -d 'Form of the output'
complete -c pelkraft -n "$inPattern diff" -l format -x -a 'text json' -d 'Form of the output'
complete -c pelkraft -n "$inPattern fix plot" -l output -r -F -d 'Where the output goes'
complete -c pelkraft -n "$inPattern fix plot" -l no-clobber -d 'Refuse to overwrite a file'

complete -c pelkraft -n $preview -l inks -r -F -d 'Looks of inks'
complete -c pelkraft -n $preview -l print-order -x -d 'Inks in the order of their printing'
complete -c pelkraft -n $preview -l gain -x -d 'Percent that half a tone gains in print'
complete -c pelkraft -n $preview -l crop -x -d 'The part to show, X,Y,W,H'
complete -c pelkraft -n $preview -l page -x -a all -d 'Pages to take'
complete -c pelkraft -n $preview -l polarity -x -a 'auto ink-high ink-low' -d 'Which samples are ink'
complete -c pelkraft -n $preview -l dot-range -x -d 'Samples of no ink and of full ink'
complete -c pelkraft -n $preview -l spool-limit -x -d 'Bytes of a pipe kept in a file'
complete -c pelkraft -n $preview -l no-clobber -d 'Refuse to overwrite a file'

complete -c pelkraft -n $simulate -l engine -x -a 'auto reference x86 sse' -d 'Engine of the library'
complete -c pelkraft -n $simulate -l levels -x -a 'raw quantize dither' -d 'What a sample means'
complete -c pelkraft -n $simulate -l tone -r -F -a 'coverage equal' -d 'Ink of each step'
complete -c pelkraft -n $simulate -l bits -x -a '2 8' -d 'Bits per sample of the new file'
complete -c pelkraft -n $simulate -l origin -x -d 'Place of the first pixel, X,Y'
complete -c pelkraft -n $simulate -l pages -d 'Let rows run on from page to page'
complete -c pelkraft -n $simulate -l preview -r -F -d 'Also write a PNG of the first page'
complete -c pelkraft -n $simulate -l ink -x -d 'Colour of an out-ink, NAME=#RRGGBB'
complete -c pelkraft -n $simulate -l dot-range -x -a keep -d 'Samples of no and full ink'

complete -c pelkraft -n $split -l inks -x -d 'Inks to split off, by number or name'
complete -c pelkraft -n $split -l naming -x -a 'gs dot' -d 'Names as in page(Cyan).tif, or as in page.Cyan.tif'
complete -c pelkraft -n $split -l page -x -d 'Pages to take, as in 1,3-5'
complete -c pelkraft -n $split -l polarity -x -a 'auto ink-high ink-low' -d 'Whether high samples are much ink'
complete -c pelkraft -n $split -l dot-range -x -d 'Samples of no and of full ink, LO,HI or keep'
complete -c pelkraft -n $split -l spool-limit -x -d 'Bytes of a pipe that may be kept'
complete -c pelkraft -n $split -l compress -x -a 'none lzw zip' -d 'Compression of the new file'
complete -c pelkraft -n $split -l no-clobber -d 'Refuse to overwrite a file'
