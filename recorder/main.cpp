// ltr27rec: records LTR27 channels through the Corvane driver from a command line.
#include "recorder/command_line.h"
#include "recorder/console.h"

int main(int count, char** values) {
    using namespace corvane::recorder;
    return static_cast<int>(RunCommandLine(CommandLineArguments(count, values)));
}
