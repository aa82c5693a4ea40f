#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

#ifndef VOSSEL_VERSION
#define VOSSEL_VERSION "0.0.0"
#endif

using namespace vossel;

namespace {

const char kUsage[] =
    "Usage: vossel-cli COMMAND ARGUMENTS\n"
    "\n"
    "Looks into GRF files, the sprite collections of Transport Tycoon Deluxe and TTDPatch.\n"
    "Sprites count from 1, as the windows count them; NFO listings count from 0, so sprite 12\n"
    "is NFO sprite 11.\n"
    "\n"
    "Commands:\n"
    "  list FILE [--json]                 one line per sprite: #, Width, Height, Size, Flags\n"
    "                                     (and a version-2 sprite's alternatives)\n"
    "  info FILE [--json]                 the status text and the messages of a load\n"
    "  sprite FILE N [--png OUT|- [--force]] [--palette PAL] [--company COLOUR]\n"
    "        [--company2 COLOUR] [--base-set FILE] [--zoom LEVEL] [--depth 8|32] [--json]\n"
    "                                     the facts of sprite N, and its pixels as PNG\n"
    "                                     (- for standard output)\n"
    "  chunks FILE N [--zoom LEVEL] [--depth 8|32] [--json]\n"
    "                                     how sprite N is stored, chunk by chunk\n"
    "  about FILE [--json]                what the file says about itself: GRF ID, name, palette\n"
    "  nfo FILE                           the whole file as NFO text, numbered from 0\n"
    "  export FILE DIR [--palette PAL] [--company COLOUR] [--company2 COLOUR]\n"
    "        [--base-set FILE] [--force]\n"
    "                                     every picture as a PNG file, sounds as WAV files, and\n"
    "                                     DIR/NAME.nfo, a listing the NewGRF encoder reads back\n"
    "                                     (name DIR sprites and run the encoder above it)\n"
    "  sheet FILE OUT.png [--columns N] [--cell PX] [--first A] [--last B] [--palette PAL]\n"
    "        [--company COLOUR] [--company2 COLOUR] [--base-set FILE] [--zoom LEVEL]\n"
    "        [--depth 8|32] [--force]\n"
    "                                     the sprites as numbered cells (16 across, 64 pixels);\n"
    "                                     past 8192 pixels OUT-2.png, OUT-3.png, ...\n"
    "  items FILE [--json]                what a NewGRF makes: one line per item (feature, ID,\n"
    "                                     name, properties, sprites reached)\n"
    "  item FILE FEATURE ID [--json]      one item's properties and graphics tree; FEATURE as\n"
    "                                     NFO writes it (00, 0A) or by name, ID decimal or 0x hex\n"
    "  diff A B [--json] [--pixels]       what changed from A to B: identity, sprites by number\n"
    "                                     (kind, size, offsets, alternatives, pixels), "
    "pseudo-sprites\n"
    "                                     with both NFO lines, items; --pixels counts the changed\n"
    "                                     pixels and boxes them; exit 0 same, 1 different, 2 "
    "trouble\n"
    "  check FILE [--json] [--ignore CODE,...]\n"
    "                                     the mistakes the file carries, one line each:\n"
    "                                     SPRITE: severity CODE: text; exit 3 with warnings only,\n"
    "                                     4 with errors\n"
    "  view FILE FEATURE ID OUT.png|- [--cargo C] [--purchase] [--loading] [--pick SPRITE=N ...]\n"
    "        [--boxes] [--origins] [--shared-origin] [--palette PAL] [--company COLOUR]\n"
    "        [--company2 COLOUR] [--base-set FILE] [--zoom LEVEL] [--depth 8|32] [--json]\n"
    "        [--force]\n"
    "                                     what an item draws, composed as the game places it:\n"
    "                                     a vehicle's views, a tile from its layout\n"
    "\n"
    "Options:\n"
    "  --json         one JSON document on standard output instead of the text\n"
    "  --zoom LEVEL and --depth 8|32 choose one of a version-2 sprite's alternatives;\n"
    "                 LEVEL is normal, in4, in2, out2, out4 or out8.\n"
    "  --palette PAL  windows, dos, declared (the default) or a palette file\n"
    "  --company COLOUR  draws in a company colour: dark-blue, pale-green, pink, yellow, red,\n"
    "                 light-blue, green, dark-green, blue, cream, mauve, purple, orange, brown,\n"
    "                 grey or white; the maps come from --base-set FILE, the file itself or an\n"
    "                 installed base set\n"
    "  --company2 COLOUR  the second company colour, the same names; drawn through the maps of\n"
    "                 two colours (Action 05 type 0A) of --base-set FILE, the file itself or an\n"
    "                 installed base set\n"
    "  --force        replace files that are there already\n"
    "  Names of zoom levels, palettes and colours are taken in any case.\n"
    "  --help         this text\n"
    "  --version      the program's version\n"
    "\n"
    "Exit status: 0 done, 1 the file cannot be read or is too small, the load found a problem,\n"
    "a value is out of range or standard output cannot be written, 2 wrong usage; check gives 3\n"
    "when it finds warnings only, 4 when it finds errors.\n";

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) {
    std::fputs(kUsage, stderr);
    return kExitUsage;
  }
  const std::string command = args[0];
  args.erase(args.begin());
  if (command == "--help" || command == "-h" || command == "help") {
    std::fputs(kUsage, stdout);
    return kExitOk;
  }
  if (command == "--version") {
    std::printf("vossel-cli %s\n", VOSSEL_VERSION);
    return kExitOk;
  }
  if (command == "list") return CmdList(args);
  if (command == "info") return CmdInfo(args);
  if (command == "sprite") return CmdSprite(args);
  if (command == "chunks") return CmdChunks(args);
  if (command == "export") return CmdExport(args);
  if (command == "about") return CmdAbout(args);
  if (command == "nfo") return CmdNfo(args);
  if (command == "sheet") return CmdSheet(args);
  if (command == "items") return CmdItems(args);
  if (command == "item") return CmdItem(args);
  if (command == "diff") return CmdDiff(args);
  if (command == "check") return CmdCheck(args);
  if (command == "view") return CmdView(args);
  std::fprintf(stderr, "vossel-cli: unknown command '%s'\n\n%s", command.c_str(), kUsage);
  return kExitUsage;
}
