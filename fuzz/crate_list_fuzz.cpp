// Whatever a server answers when it is asked for its crates, and what the user is shown of it.
#include <set>

#include "fuzz/vendor_library.h"
#include "hardware/TLTRAPI.h"
#include "selection/dlgQuorn.h"
#include "selection/mQuorn.h"
#include "selection/name_pattern.h"

namespace corvane {
namespace {

constexpr uint32_t AskedServer = 0x0A000007;  // 10.0.0.7

void RequireCrate(const CrateListEntry& crate, const std::string& filter) {
    Require(crate.NetAddr == AskedServer && crate.Address == "10.0.0.7", "the server that was asked");
    RequireText(crate.Serial, "", "a serial");
    RequireText(crate.TypeName, "", "a type");
    Require(!crate.Serial.empty() && !crate.TypeName.empty(), "a crate with a name");
    Require(crate.Interface == "USB" || crate.Interface == "Ethernet", "an interface");
    Require(!crate.Modules.empty(), "modules");
    int32_t last = 0;
    for (const ModuleListEntry& module : crate.Modules) {
        Require(module.Slot > last && module.Slot <= CrateSlots, "slots in order");
        Require(filter.empty() || MatchesPattern(module.Name, filter), "modules that were asked for");
        RequireText(module.Name, "", "a module's name");
        last = module.Slot;
    }
}

void RequireTree(const CrateSearch& search) {
    dlgQuorn dialog;
    Require(dialog.FillTree(search) == !search.CrateList.empty(), "a tree of the crates");
    size_t nodes = 0;
    for (const CrateListEntry& crate : search.CrateList) nodes += 1 + crate.Modules.size();
    Require(dialog.tvwLTR.size() == nodes, "a node for each crate and module");
    std::set<std::string> keys;
    int crate = -1;
    for (size_t i = 0; i < dialog.tvwLTR.size(); i++) {
        const platform::TreeNode& node = dialog.tvwLTR[i];
        if (node.Parent < 0) crate++;
        Require(node.Parent < static_cast<int>(i) && keys.insert(node.Key).second, "a key of its own");
        dialog.ClickNode(node.Key);
        Require(dialog.Selection == crate, "a node chooses its crate");
    }
}

}  // namespace
}  // namespace corvane

// Bytes: the module filter, then the answers.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvane;
    FuzzInput input(data, size);
    const uint8_t choice = input.Byte();
    const std::string filter = choice == 0 ? "LTR27" : choice == 1 ? "" : input.Text();
    Answers.Crates = &input;
    CrateSearch search;
    search.Interactive = false;
    search.Server = AskedServer;
    std::string lastError;
    const int16_t count = FindCrates(search, filter, "LTR27", lastError);
    Require(count == search.CrateListCount && count >= -1 && count <= MaxCrates, "a count");
    Require(search.CrateList.size() == static_cast<size_t>(std::max<int16_t>(count, 0)), "as many crates");
    Require((count < 0) == !lastError.empty(), "a reason when the server can't be asked");
    for (const CrateListEntry& crate : search.CrateList) RequireCrate(crate, filter);
    RequireTree(search);
    {
        TLTRAPI crates;
        uint32_t mark = 0;
        crates.MakeStartMark(AskedServer, "C1", input.Byte() % 8 + 1, mark);
        RequireText(crates.GetErrorString(), AnyControl, "an error");
    }
    Answers.Crates = nullptr;
    Require(Answers.Connections == 0, "every connection closed");
    return 0;
}
