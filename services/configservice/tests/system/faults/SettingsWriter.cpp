// Changes the user's settings of a profile a hundred times: settings_writer CONFIG DATA STATE RESOURCES
#include "OtherWriter.h"

#include <kyr/FileUtils.h>

int main(int argc, char** argv) {
    if (argc != 5) {
        return 2;
    }
    KyrCoreUtils::FileUtils::overrideDirectories({argv[1], argv[2], argv[3], argv[4]});
    ZelUnified::writeSettings();
    return 0;
}
