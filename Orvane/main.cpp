#include "Orvane/ToolFace.h"
#include "OrvaneCore/Log.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

int main(int argc, char* argv[]) {
    const bool toolFace = std::any_of(argv + std::min(argc, 1), argv + argc, [](const char* argument) {
        return std::string_view(argument) == "--mcp";
    });
    if (toolFace) {
        orvane::runToolFace(argc, argv);
        return EXIT_SUCCESS;
    }
    orvane::logLine(u"this build has no tray application; start the tool server with --mcp");
    return EXIT_FAILURE;
}
