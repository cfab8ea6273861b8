// SPDX-License-Identifier: MIT
#include "Commands.h"

namespace cli {

const char* const helpText =
    R"(Imprinter stamps titles such as page numbers and "Received" onto PDF documents and pictures.

    imprinter                                      open the window
    imprinter open FILE...                         open the window with files that wait to be stamped
    imprinter list                                 list the configurations
    imprinter show NAME...                         print configurations
    imprinter stamp --configuration NAME... [--output PATH | --in-place] FILE...
                                                   stamp files; PATH is a file for one, a folder for several
    imprinter stamp --title TEXT [LOOKS] [--output PATH | --in-place] FILE...
                                                   stamp a title that is told here
    imprinter unstamp [--stamp NAME...] [--output PATH | --in-place] FILE...
                                                   remove stamps from PDF documents, all or those named
    imprinter unstamp --list FILE...               list the stamps of PDF documents, their names and pages
    imprinter preview --configuration NAME --output PICTURE [SAMPLE]
                                                   stamp a sample page
    imprinter export [--output FILE] [NAME...]     write configurations to a file of their own
    imprinter import [--replace] FILE...           take configurations over from such files
    imprinter pictures FOLDER                      leave pictures of the program and of stamped samples

    --store FILE           before any command: use the configurations in FILE
    --configuration NAME   a name or an identifier; given several times, the stamps are put on in that order
    --title TEXT           what to stamp, with or without configurations; %pageNumber%, %recordPageCount%, %date%,
                           %time%, %recordName%, %user% and %runningNumber% stand for what they say
      --font NAME          its font's PostScript name; DejaVuSans-Bold at first
      --size POINTS        14 at first
      --color COLOUR       a name, #rgb, #rrggbb or #rrggbbaa; black at first
      --border STYLE       none, rectangle, rounded, oval, double, dashed, underline or corners
      --border-color COLOUR, --thickness POINTS
                           the text's colour and 1.5 at first
      --fill COLOUR        a ground
      --position PLACE     top-left, top, top-right, left, center, right, bottom-left, bottom or bottom-right
      --offset X,Y         from there, in points to the right and up
      --rotate DEGREES     counter-clockwise
    --output PATH          where to; "-" is the standard output
    --in-place             replace the files themselves
                           Without either, the configuration's option to duplicate items decides; the copy lies beside
                           the file, and its name is printed.
    --force                replace files that are write-protected too
    --pages LIST           these pages, such as 1-3,7,10-, in place of those the configuration names; given several
                           times, the lists are joined. Only they lose stamps by --replace, or by unstamp
    --first-number N       where %runningNumber% begins, which counts on through all pages of all files
    --replace              take away what the same configurations stamped before; pictures, which cannot lose a
                           stamp, are refused
    --stamp NAME           a stamp to remove, by the name that --list shows: that of its configuration, or where there is
                           none any more its identifier; a --title at the top right is called title-top-right
    --password-file FILE   its first line opens encrypted documents
    --allow-signed         stamp signed documents too; what was signed stays valid. Certified ones are never stamped
    --incremental          add to the documents, or fail where that is impossible
    --rewrite              write the documents anew. Without either, what suits each is chosen
    --dry-run              write nothing, and say what would come of it: what cannot be stamped and why, characters that the
                           font lacks, stamps that do not fit on their page
    --jobs N               work on N files at once
    --json                 print a line of JSON for each file
    --help, also after a command; --version

FILE may be "-", the standard input, whose result goes to the standard output unless --output says otherwise.

Examples:
    imprinter stamp --title "RECEIVED page %pageNumber% of %recordPageCount%" --color red --border rectangle letter.pdf
    imprinter stamp --configuration Received --output letter-received.pdf letter.pdf
    imprinter stamp --configuration "Page of Pages" --configuration Confidential --output stamped/ *.pdf
    imprinter stamp --configuration Received --in-place --replace --jobs 4 inbox/*.pdf
    produce | imprinter stamp --configuration Confidential - | consume
    imprinter unstamp --stamp Received --in-place letter.pdf

Exit status: 0 done, 1 the program could not go on, 2 a document could not be read or stamped, 3 a result could not
be written, 4 no such configuration or none that can be read, 5 there is no display, 6 another program changed the same
configurations and nothing was written, 64 the command line was not understood, 130 interrupted.
)";

} // namespace cli
