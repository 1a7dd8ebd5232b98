// What a Russian user reads: all of it in Russian, in columns that stand straight; and what programs read is as ever.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <tuple>

#include "recorder/command_line.h"
#include "recorder/monitor_picture.h"
#include "recorder/options.h"
#include "recorder/progress.h"
#include "recorder/text_columns.h"
#include "recorder/words.h"
#include "simulator/control.h"
#include "simulator/sequence.h"
#include "standins/registry_hooks.h"
#include "tests/recorder/test_console.h"

namespace corvane::recorder {
namespace {

ExitCode RunSaying(const std::string& line) {
    Said.clear();
    StandardOutputText.clear();
    std::istringstream words(line);
    const ExitCode code = RunCommandLine({std::istream_iterator<std::string>(words), {}});
    Said += StandardOutputText;
    return code;
}

// Words of Latin letters that are no names: what was left in English. Options, files and numbers are no words.
std::string LeftInEnglish(const std::string& text) {
    static const std::set<std::string> names = {
        "list",   "settings", "record",  "monitor", "convert", "report", "driver", "doctor", "help",
        "regsvr", "csv",      "npy",     "influx",  "plain",   "excel",  "fitted", "all",    "en",
        "ru",     "JSON",     "CSV",     "SVG",     "HTML",    "NumPy",  "Excel",  "LTR",    "InfluxDB",
        "gzip",   "Ctrl",     "Windows", "kB",      "MB",      "GB",     "TB",     "ltrapi", "USB",
        "Make",   "Internal", "mA",      "Corvane", "build",   "native", "Wait",   "Rise"};
    std::string left;
    std::istringstream lines(text);
    for (std::string word; lines >> word;) {
        constexpr const char* Around = "()[],;:.!?\"+|>";
        word.erase(0, std::min(word.find_first_not_of(Around), word.size()));
        word.resize(word.find_last_not_of(Around) + 1);
        const auto letter = [](unsigned char c) { return (c | 32) >= 'a' && (c | 32) <= 'z'; };
        if (word.size() > 1 && std::ranges::all_of(word, letter) && !names.contains(word)) left += word + ' ';
    }
    return left;
}

TEST(RecorderLanguage, IsTheUsersUnlessOneIsNamed) {
    // Whether the user reads Russian, the command line, and whether Russian is spoken.
    const std::tuple<bool, const char*, bool> cases[] = {{false, "--help", false},
                                                         {true, "list --help", true},
                                                         {true, "--lang en list --help", false},
                                                         {false, "list --lang=ru --help", true},
                                                         {false, "list --help --lang ru", true},
                                                         {true, "--lang ru report --help --lang en", false},
                                                         {true, "reord --lang en", false},
                                                         {false, "--lang ru reord", true},
                                                         {true, "list --lang", true},
                                                         {false, "list --lang=de", false}};
    for (const auto& [reads, line, russian] : cases) {
        ReadsRussian = reads;
        RunSaying(line);
        EXPECT_EQ(Said.find("\u0430") != std::string::npos, russian) << line << Said;
    }
    ReadsRussian = false;
    EXPECT_EQ(RunSaying("list --lang de"), ExitCode::Usage);
    ChooseLanguage(Language::English);
}

TEST(RecorderLanguage, SaysEverythingInRussian) {
    const std::string csv = testing::TempDir() + "russian.csv";
    const std::string record = "record -r 1000 -o " + csv;
    const char* const silent = "slot = 5\ncall = 'LTR27_Recv'\nafter = 2\nerror = -12";
    // A fault, the command line, the exit code, and what is said or the start of a line of the CSV file.
    const std::tuple<const char*, std::string, ExitCode, const char*> cases[] = {
        {"", "--help", ExitCode::Success, "\n  4    запись не удалось начать\n"},
        {"", "list --help", ExitCode::Success, "\n  --crate ЗНАЧЕНИЕ            Серийный номер крейта"},
        {"", "record --help", ExitCode::Success, "\n  -d,--duration ЗНАЧЕНИЕ не вместе с: --samples\n"},
        {"", "monitor --help", ExitCode::Success, "Вызов: ltr27rec monitor [КЛЮЧИ]\n"},
        {"", "convert --help", ExitCode::Success, "\nАргументы:\n  запись ЗНАЧЕНИЕ ОБЯЗАТЕЛЬНО ИМЯ.npy;"},
        {"", "report --help", ExitCode::Success, "на котором\n                              открывается"},
        {"", "settings --help", ExitCode::Success, "\nКлючи:\n  -h,--help                   Показать"},
        {"", "driver --help", ExitCode::Success, "\nОдин из этих:\n  --real "},
        {"", "doctor --help", ExitCode::Success, "\n  --json                      Результат"},
        {"", "record", ExitCode::Usage, "ltr27rec: Не указано: --output\n"},
        {"", "record -o", ExitCode::Usage, "--output: не указано значение\n"},
        {"", "record -o a -o b", ExitCode::Usage, "не больше 1, а указано 2\n"},
        {"", "record -o a -n 5 -d 1s", ExitCode::Usage, "Вместе не указывают: --duration, --samples\n"},
        {"", "driver --real --simulator", ExitCode::Usage, "только один ключ из этих: --real,"},
        {"", "list 1 2", ExitCode::Usage, "Лишние аргументы: 2 1\n"},
        {"", "record -o a -c x1", ExitCode::Usage, "«x1» — не номер канала"},
        {"", "list", ExitCode::Success, "LTR27 (ИМИТАЦИЯ): 32 канала, разрядов: 15, до 1000 Гц"},
        {"", "list", ExitCode::Success,
         "\n №  Имя         Диапазон  Ед.  Отсчётов/ед.  Смещение\n"
         " 0  03_1-1_SEQ  ±10 В     V          1638.4         0\n"},
        {silent, "doctor", ExitCode::Incomplete, "пропуск, первый: слот 5, ничего не пришло\n         > Проверьте"},
        {"", "monitor -r 1000 -c 3 --once", ExitCode::Success, "\nИзмерено всё.\n № Имя "},
        {silent, record + " -d 200ms", ExitCode::Incomplete, "Внимание: не измерено: "},
        {silent, record + " -d 200ms", ExitCode::Incomplete,
         "28 каналов, 1000 Гц (0.2 с), все кадры записаны, но не все измерены\n"},
        {silent, record + " -d 200ms", ExitCode::Incomplete, "# not measured: module 1, slot 5, from 0."},
        {"", record + " -d 1h", ExitCode::Interrupted, "прервано: кадров: 0 из 3600000"},
        {"", "report " + csv + " -o " + csv + ".html", ExitCode::Success, "каждый отсчёт; запись: прервано: кадров"},
        {"call = 'LTR27_Recv'\nafter = 4\nerror = -12", record + " -d 5s --stall-timeout 400ms", ExitCode::Incomplete,
         " из 5000, ничего не измерено 0.4 с\n"},
        {"", "report " + csv + " -o " + csv + ".html", ExitCode::Success, " из 5000, ничего не измерено 0.4 с\n"},
        {"", "record -o " + testing::TempDir(), ExitCode::Output, " — папка. Укажите"},
        {"", "convert " + csv + " -o a", ExitCode::Input, " — не массив NumPy"}};
    for (const auto& [fault, line, code, said] : cases) {
        platform::ClearRegistry();
        ASSERT_EQ(LtrSim_Configure(SequenceCrate({3, 5}, "1.0").c_str()), 0) << LtrSim_Message();
        ASSERT_TRUE(*fault == '\0' || LtrSim_AddFault(fault) == 0) << LtrSim_Message();
        const bool interrupted = line.ends_with("1h");
        Interrupt = [interrupted] { return interrupted; };
        EXPECT_EQ(RunSaying(line + " --lang ru"), code) << line << Said;
        EXPECT_EQ(LeftInEnglish(Said), "") << line << '\n' << Said;
        std::ifstream file(csv);
        const std::string written((std::istreambuf_iterator<char>(file)), {});
        EXPECT_NE((*said == '#' ? written : Said).find(said), std::string::npos) << line << said << '\n' << Said;
        std::istringstream lines(Said);
        for (std::string row; line.ends_with("help") && std::getline(lines, row);)
            EXPECT_LE(ColumnsOf(row), 80u) << row;
    }
    Interrupt = nullptr;
    for (const char* line : {"monitor -r 1000 -c 13-14 --once --json", "doctor --json"}) {
        RunSaying(line + std::string(" --lang ru"));
        EXPECT_NE(
            Said.find(*line == 'd' ? "\"step\": \"Code page\",\n      \"result\": \"works\",\n      \"text\": \"единицы"
                                   : ",\"device\":\"LTR27 (SIMULATED)\",\"crate\""),
            std::string::npos)
            << Said;
        EXPECT_EQ(Said.find("пусто"), std::string::npos) << Said;
    }
    ChooseLanguage(Language::English);
}

TEST(RecorderLanguage, CountsAndColumnsAreRussian) {
    ChooseLanguage(Language::Russian);
    const std::pair<int64_t, const char*> counts[] = {
        {0, "0 кадров"},   {1, "1 кадр"},   {4, "4 кадра"},   {5, "5 кадров"},     {11, "11 кадров"},
        {14, "14 кадров"}, {21, "21 кадр"}, {22, "22 кадра"}, {112, "112 кадров"}, {1001, "1001 кадр"}};
    for (const auto& [count, text] : counts) EXPECT_EQ(Counted(count, KadrNoun), text);

    EXPECT_EQ(ProgressLine(370, 1000, 0.37, 12, 79),
              "[#######             ]  37 %  кадров: 370 из 1000  0.4 с  ждёт: 12");
    EXPECT_EQ(ProgressLine(370, 1000, 0.37, 12, 39), " 37 %  кадров: 370 из 1000  0.4 с  ждёт");
    EXPECT_LE(ColumnsOf(ProgressLine(36000000000, 36000000000, 36e6, 65536, 79)), 79u);

    MonitorState state;
    state.Device = "LTR27";
    state.Crate = "3T1";
    state.Rate = 1000;
    state.Channels = {{{0, "a", "", "V", 1638.4, 0}, 8192, {-16384, 8192}, "gap"},
                      {{19, "Empty", "", "", 1, 0}, std::nullopt, {}, "empty"}};
    std::string picture;
    for (const std::string& line : MonitorPicture(state, 80, 9)) picture += line + '\n';
    EXPECT_EQ(picture,
              "LTR27 3T1, 1000 Гц, 0.0 с\nОжидание данных.\n"
              " № Имя      Значение Ед. Диапазон                         Мин.     Макс.\n"
              " 0 a         5.00000 V   [------------------#      ] -10.00000   5.00000 пропуск\n"
              "19 (пусто)         -     [                         ]         -         - пусто\n");
    ChooseLanguage(Language::English);
}

}  // namespace
}  // namespace corvane::recorder
