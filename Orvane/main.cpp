#include "Orvane/ApplicationFace.h"
#include "Orvane/ToolFace.h"
#include "OrvanePlatform/Platform.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

int main(int argc, char* argv[]) {
    orvane::prepareProcess();
    const bool toolFace = std::any_of(argv + std::min(argc, 1), argv + argc, [](const char* argument) {
        return std::string_view(argument) == "--mcp";
    });
    if (!toolFace)
        return orvane::runApplicationFace(argc, argv);
    orvane::runToolFace(argc, argv);
    return EXIT_SUCCESS;
}
