// The address list on a file of any bytes: what the dialog makes of it and of the user's buttons comes back from the
// file that it leaves.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "base/dotted_address.h"
#include "fuzz/fuzz_input.h"
#include "selection/address_file.h"
#include "selection/dlgIP.h"

namespace corvane {
namespace {

// In memory: the dialog's writing waits for the disk, a thousand times a second.
struct Folder {
    Folder() { Require(mkdtemp(Path.data()) != nullptr, "a folder"); }
    ~Folder() { std::filesystem::remove_all(Path); }
    std::string Path = "/dev/shm/corvane-fuzz-XXXXXX";
};

// Bytes as they are, or each standing for what such files are made of: chance alone writes hardly an address.
std::string FileOf(const uint8_t* data, size_t size) {
    static const std::string pieces[] = {"0", "1",      "2",           "5",           "9",        ".",
                                         ".", ".1.2.3", "10.0.0.",     "\n",          "\r\n",     "\r",
                                         " ", "-",      "127.0.0.1\n", "256.1.1.1\n", "0.0.0.0\n"};
    if (size == 0 || data[0] % 2 == 0) return {data, data + size};
    std::string text;
    for (size_t i = 1; i < size; i++) text += pieces[data[i] % std::size(pieces)];
    return text;
}

void RequireList(const dlgIP& dialog) {
    const std::vector<uint32_t>& list = dialog.lstIP();
    Require(!list.empty() && list[0] == ThisMachine, "this machine first");
    Require(list.size() <= MaxAddresses, "no more than there are positions");
    const std::set<uint32_t> different(list.begin(), list.end());
    Require(different.size() == list.size() && !different.contains(0), "each address once, none 0");
    Require(dialog.ListIndex() >= -1 && dialog.ListIndex() < static_cast<int>(list.size()), "an entry or none");
}

void Act(dlgIP& dialog, FuzzInput& input) {
    const uint8_t action = input.Byte();
    const uint8_t value = input.Byte();
    switch (action % 6) {
        case 0:
            dialog.PressRemove();
            break;
        case 1:
            dialog.PressClear();
            Require(dialog.lstIP().size() == 1, "cleared");
            break;
        case 2:
            dialog.Address.SetValue(value * 0x01010101u);
            break;
        case 3:
            if (dialog.PressOK()) {
                Require(dialog.SelectedIP() != 0 && dialog.SelectedIP() == dialog.Address.Value(), "what was typed");
            }
            break;
        default:
            dialog.Select(value - 1);
    }
}

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace
}  // namespace corvane

// Bytes: eight actions, then the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    static const Folder folder;
    const std::string path = folder.Path + "/iplist.txt";
    const size_t head = std::min<size_t>(size, 16);
    FuzzInput actions(data, head);
    std::ofstream(path, std::ios::binary) << FileOf(data + head, size - head);

    dlgIP dialog("LTR27", folder.Path);
    RequireList(dialog);
    while (!actions.Empty()) {
        Act(dialog, actions);
        RequireList(dialog);
    }
    dialog.Unload();
    const dlgIP again("LTR27", folder.Path);
    Require(again.lstIP() == dialog.lstIP(), "read back as it was");

    std::string lines;
    for (size_t i = 1; i < again.lstIP().size(); i++) lines += DottedText(again.lstIP()[i]) + "\r\n";
    WriteAddresses(path, std::span(again.lstIP()).subspan(1));
    Require(Content(path) == lines, "one address a line");
    Require(dlgIP("LTR27", folder.Path).lstIP() == again.lstIP(), "written and read back as it was");
    return 0;
}
