// The dialogs that show crates and modules: Select Device and the setup dialog.
#include "selection/dlgQuorn.h"
#include "settings/dlgSetup.h"
#include "standins/user.h"
#include "tests/native/driver_fixture.h"

namespace corvane {
namespace {

using platform::TreeNode;

std::string Shown(const std::vector<TreeNode>& nodes) {
    std::string text;
    for (const TreeNode& node : nodes) {
        const std::string parent = node.Parent < 0 ? "" : nodes[static_cast<size_t>(node.Parent)].Key + "/";
        text += parent + node.Key + "=" + node.Text + "(" + std::to_string(node.Picture) + ")\n";
    }
    return text;
}

TEST(SelectDeviceDialog, ShowsCratesWithTheirModulesAndAClickChoosesOne) {
    CrateSearch search;
    for (int i = 0; i < 14; i++) {
        const std::string number = std::to_string(i);
        search.CrateList.push_back({0, "10.0.0." + number, "LTR030", "SN" + number, "USB", {{"LTR27", 3}, {"X", 12}}});
    }
    search.CrateListCount = 12;
    dlgQuorn dialog;
    ASSERT_TRUE(dialog.FillTree(search));
    EXPECT_EQ(dialog.Caption, "Select Device - IP: 10.0.0.0");
    const std::string tree = "C0=LTR030 SN:SN0(1)\nC0/C0M0=Slot 03 - LTR27(2)\nC0/C0M1=Slot 12 - X(2)\nC1=";
    EXPECT_EQ(Shown(dialog.tvwLTR).substr(0, tree.size()), tree);
    EXPECT_EQ(dialog.tvwLTR.size(), 36u) << "the list holds 14";
    EXPECT_EQ(dialog.Selection, 0);
    const std::pair<const char*, int> clicks[] = {{"C10", 10}, {"C11M0", 11}, {"", -1}, {"C1", 1}, {"CM1", -1}};
    for (const auto& [key, crate] : clicks) {
        dialog.ClickNode(key);
        EXPECT_EQ(dialog.Selection, crate) << key;
        EXPECT_EQ(dialog.OKEnabled(), crate >= 0);
        for (const TreeNode& node : dialog.tvwLTR) {
            EXPECT_EQ(dialog.Bold(node.Key), node.Key == "C" + std::to_string(crate)) << node.Key;
        }
    }
}

class SetupDialog : public testing::Test {
protected:
    void SetUp() override {
        State.Device.DriverName = "Driver";
        State.Device.ADCName = "LTR27";
        State.Crate.Serial = "3T12";
        State.Crate.TypeName = "LTR030";
        State.Crate.Info = "the crate";
        ShownMessages.clear();
    }
    void TearDown() override { UserOfSetup = nullptr; }

    void OpenModules(int count) {
        State.Engine.Modules = std::vector<ModuleRecord>(3);  // more than are open
        State.Engine.OpenedCount = static_cast<int16_t>(count);
        for (int i = 0; i < count; i++) {
            ModuleRecord& module = State.Engine.Modules[static_cast<size_t>(i)];
            module.Slot = 3 + 8 * i;
            module.Name = "LTR27";
            module.Info = "module " + std::to_string(i);
            module.Mezzanines[0] = {"H-27U10", "12345", "A.0", "В", 10, -10};
            module.Mezzanines[7] = {"H-27I5", "ЯЯ3456789", "B.0", "мА", 5, 0};
        }
        BuildChannelModel(State.Device, State.Engine.Opened());
    }
    dlgSetup NewDialog() { return {State.Device, State.Engine, State.Crate, State.HelpFile}; }
    bool ShowSetting() { return corvane::ShowSetting(State.Device, State.Engine, State.Crate, State.HelpFile); }

    DriverState State;
};

TEST_F(SetupDialog, ShowsTheCrateAndItsModules) {
    EXPECT_TRUE(NewDialog().lstMezzanines.empty());
    State.HelpFile = ".chm";
    EXPECT_FALSE(NewDialog().HelpEnabled());
    State.HelpFile = "C:\\LCard.chm";
    OpenModules(2);
    State.Crate.MarkSTARTMode = 5;
    dlgSetup dialog = NewDialog();
    EXPECT_EQ(dialog.Caption, "Driver Setup (v3.2.1)");
    EXPECT_EQ(Shown(dialog.tvwLTR), "C3T12=LTR030(1)\nC3T12/M0=03. LTR27(2)\nC3T12/M1=11. LTR27(2)\n");
    ASSERT_EQ(dialog.lstMezzanines.size(), 16u);
    EXPECT_EQ(dialog.lstMezzanines[0] + dialog.lstMezzanines[1], "03_H-27U10\tvA.0\t12345   \t±10 В03_Empty");
    EXPECT_EQ(dialog.lstMezzanines[15], "11_H-27I5\tvB.0\tЯЯ345678\t0…5 мА");
    EXPECT_EQ(dialog.cboMarkSTART, 5);
    EXPECT_TRUE(dialog.HelpEnabled());
    EXPECT_EQ(dialog.HelpTopic, 27);
    EXPECT_EQ(dialog.txtInfo, "the crate");
    const std::pair<const char*, const char*> clicks[] = {
        {"M1", "module 1"}, {"C3T12", "the crate"}, {"M0", "module 0"}, {"", "the crate"}, {"M", "the crate"}};
    for (const auto& [key, info] : clicks) {
        dialog.ClickNode(key);
        EXPECT_EQ(dialog.txtInfo, info) << key;
    }
}

TEST_F(SetupDialog, OnlyOkKeepsTheMode) {
    EXPECT_FALSE(ShowSetting());
    EXPECT_EQ(State.Crate.MarkSTARTMode, 0);
    UserOfSetup = [](dlgSetup& dialog) {
        for (const int selected : {5, -1, 8}) dialog.PressOK(selected);
    };
    EXPECT_FALSE(ShowSetting());
    EXPECT_EQ(State.Crate.MarkSTARTMode, 5);
    State.Engine.Busy = true;
    UserOfSetup = [](dlgSetup&) { ADD_FAILURE() << "shown during a recording"; };
    EXPECT_FALSE(ShowSetting());
}

TEST_F(SetupDialog, FailureIsShownToTheUser) {
    UserOfSetup = [](dlgSetup&) { throw std::runtime_error("no window"); };
    EXPECT_FALSE(ShowSetting());
    EXPECT_EQ(ShownMessages.back(), "LTR27|Error: no window");
    UserOfSetup = [](dlgSetup&) { ADD_FAILURE() << "shown all the same"; };
    State.Crate.MarkSTARTMode = 8;  // none of the list
    EXPECT_FALSE(ShowSetting());
    State.Crate.MarkSTARTMode = 0;
    OpenModules(2);
    State.Device.Ranges.resize(9);
    EXPECT_FALSE(ShowSetting());
    EXPECT_EQ(ShownMessages.size(), 3u);
}

using DialogsOfADriver = DriverFixture;

TEST_F(DialogsOfADriver, OneThatCanNotBeMadeIsAnOrdinaryFailure) {
    for (const std::string& scenario : {Server("10.0.0.1"), Server("127.0.0.1") + Crate("A", {3}) + Crate("B", {3})}) {
        Configure(scenario);
        bool memory = true;
        const auto fail = [&](auto&) { memory ? throw std::runtime_error("no window") : throw std::bad_alloc(); };
        UserOfIP = fail;
        UserOfDevice = fail;
        EXPECT_FALSE(Driver->Test());
        EXPECT_EQ(Driver->LastError(), "Error: no window");
        memory = false;
        EXPECT_THROW(Driver->Test(), std::bad_alloc);
        UserOfIP = nullptr;
        UserOfDevice = nullptr;
        EXPECT_EQ(Driver->Test(), scenario.find('3') != std::string::npos) << "the next try is as good as the first";
    }
}

TEST_F(DialogsOfADriver, OfSeveralCratesTheUserChoosesOne) {
    int shown = 0;
    for (const char* chosen : {"A", "B", ""}) {
        Configure(Server("127.0.0.1") + Crate("A", {3}) + (*chosen == 'A' ? "" : Crate("B", {3})));
        UserOfDevice = [&](dlgQuorn& dialog) {
            shown++;
            *chosen != '\0' ? dialog.ClickNode("C1") : dialog.PressCancel();
        };
        EXPECT_EQ(Driver->Test(), *chosen != '\0');
        EXPECT_EQ(State().Crate.Serial + Driver->LastError(), chosen);
    }
    UserOfDevice = nullptr;
    EXPECT_EQ(shown, 2) << "the only one is not asked for";
}

// As a host's timer would while the dialog is open.
TEST_F(DialogsOfADriver, CallsDuringTheDialogDoNothing) {
    int shown = 0;
    UserOfSetup = [&](dlgSetup&) {
        if (++shown > 1) return;
        EXPECT_FALSE(Driver->ShowSetting());
        EXPECT_FALSE(Driver->Test());
        EXPECT_FALSE(Driver->ShowSetting()) << "the calls before have not ended the first one";
    };
    Driver->ShowSetting();
    EXPECT_EQ(shown, 1);
    EXPECT_TRUE(Driver->Test());
    Driver->ShowSetting();
    EXPECT_EQ(shown, 2);
    UserOfSetup = nullptr;
}

}  // namespace
}  // namespace corvane
