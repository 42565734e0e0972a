# SPDX-License-Identifier: Apache-2.0
"""The command ends with one of these, which --help lists."""

DONE = 0
WARNINGS = 1
USAGE = 2
REPORT = 6
PAGES_FAILED = 10
CLUSTER_LOST = 11
INTERRUPTED = 130

HELP = """\
exit codes:
  0    every page is made, or was there already
  1    the same, with a warning about pixels, which a page's result holds
  2    wrong usage, or a wrong list of jobs; nothing was begun
  6    the report could not be written; pages were made all the same
  10   some pages failed; all others are done
  11   the cluster could not be reached or went away, and pages are left; a rerun keeps what is done
  130  interrupted; no half file is left, and a rerun keeps what is done
"""
