// The control's texts from Windows language DLLs that a host loaded itself and handed over by
// module handle, under Wine: kestrin-en.dll made by the build and the fixture libraries (the
// standard one 32-bit, so only loadable as a data file, the custom one 64-bit).
#include <windows.h>

#include <QDir>
#include <QTableView>
#include <gtest/gtest.h>

#include <tuple>

#include "Differential.h"
#include "control/IClass.h"
#include "control/LanguageLibraries.h"
#include "support/TestSupport.h"
#include "text/TextCatalog.h"

namespace kestrin::test {
namespace {

std::wstring wide(const QString& path) { return QDir::toNativeSeparators(path).toStdWString(); }

const QString kEnglishDll = QStringLiteral(KESTRIN_ENGLISH_DLL);
const QString kFixtures = QStringLiteral(KESTRIN_FIXTURES "/lang/");
const char* const kSelectFirst = "Please select the item you want to remove first.";

LanguageHandle handleOf(HMODULE module) { return reinterpret_cast<LanguageHandle>(module); }

// What the operator sees of the texts: the two grids' headers, the item grid's tool tip and the message a
// command without a selected item shows.
using Shown = std::tuple<std::string, std::string, std::string, std::string>;

struct Host {
    RecordingPrompter prompter{Answer::Ok};
    IClass control;
    Host(LanguageHandle standard, LanguageHandle custom = 0) {
        control.setPrompter(&prompter);
        QMetaObject::invokeMethod(&control, "NewLayout", Q_ARG(bool, false));
        EXPECT_TRUE(control.setProperty("LanguageDLL", qlonglong{standard}) &&
                    control.setProperty("CustomLanguageDLL", qlonglong{custom}));
    }
    std::string message() {
        prompter.messages.clear();
        QMetaObject::invokeMethod(&control, "RemoveItem");
        return prompter.messages.size() == 1 ? prompter.messages[0].text : "(none)";
    }
    Shown shown() {
        const std::string said = message();
        return {control.itemGrid()->model()->headerData(1, Qt::Horizontal).toString().toStdString(),
                control.dbUpdateGrid()->model()->headerData(3, Qt::Horizontal).toString().toStdString(),
                control.itemGrid()->toolTip().toStdString(), said};
    }
};

// The custom library first, then the standard one, then the control's default, else "*=*+*".
TEST(LanguageDll, TheControlShowsTheTextsOfTheLibrariesItWasHanded) {
    // The libraries as Windows hosts load them: plainly, as an image resource, as a data file.
    const HMODULE english = LoadLibraryW(wide(kEnglishDll).c_str()),
                  custom = LoadLibraryExW(wide(kFixtures + "custom.dll").c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE),
                  standard = LoadLibraryExW(wide(kFixtures + "standard.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(english && custom && standard) << "a library did not load: " << GetLastError();
    const std::string tip = TextCatalog::parse(readBytes(KESTRIN_EXAMPLES "/lang/kestrin-en.txt"))->lookup(3195).value_or("?");
    const std::string customText = "Custom: Wählen Sie zuerst ein Element.", standardText = "Standard: select an item first.";
    const std::string field = "Field(s) or Function", function = "Function Properties";
    const std::string noField = "<Field(s) or Function>", noFunction = "<Function Properties>";
    const std::tuple<HMODULE, HMODULE, Shown> cases[] = {  // custom, standard, shown
        {nullptr, english, {field, function, tip, kSelectFirst}},
        {custom, english, {field, function, tip, customText}},
        {nullptr, standard, {noField, noFunction, "*=*+*", standardText}},
        {english, custom, {field, function, tip, kSelectFirst}},
        {nullptr, nullptr, {noField, noFunction, "*=*+*", "*=*+*"}},
    };
    for (const auto& [customDll, standardDll, want] : cases)
        EXPECT_EQ(Host(handleOf(standardDll), handleOf(customDll)).shown(), want) << customDll << ", " << standardDll;
    for (HMODULE module : {english, custom, standard}) FreeLibrary(module);
}

// How the demo host loads its libraries, as a Windows host does: a DLL is loaded by Windows and freed
// again, a text catalog opened in the registry; a file Windows refuses is named in the reason.
TEST(LanguageDll, LoadLanguageLibraryGivesModuleHandlesForDllsAndRegistryHandlesForCatalogs) {
    const TempDir dir;
    writeBytes(dir / "broken.dll", "MZ this is no Windows image");
    QString why;
    const LanguageHandle module = loadLanguageLibrary(kEnglishDll, &why);
    // The DLL's handle is its module handle, through which LoadString reads the library.
    wchar_t units[256];
    EXPECT_TRUE(why.isEmpty() && LoadStringW(reinterpret_cast<HMODULE>(module), 3195, units, 256) > 0) << why.toStdString();
    const LanguageHandle catalog = loadLanguageLibrary(KESTRIN_EXAMPLES "/lang/kestrin-en.txt");
    for (const LanguageHandle handle : {module, catalog}) {
        Host host(handle);
        EXPECT_EQ(host.message(), kSelectFirst) << handle;
        const bool freed = freeLanguageLibrary(handle);
        EXPECT_EQ(std::make_pair(freed, freeLanguageLibrary(handle)), std::make_pair(true, false)) << handle;
        EXPECT_EQ(host.message(), "*=*+*") << "after freeing " << handle;
    }
    const QString broken = QString::fromStdWString((dir / "broken.dll").wstring());
    EXPECT_EQ(loadLanguageLibrary(broken, &why), 0);
    EXPECT_TRUE(why.contains(QDir::toNativeSeparators(broken))) << why.toStdString();
}

// Every id reads from the DLL made of a catalog as it reads from the catalog: LoadStringW with the
// 256-unit buffer hosts use against the catalog reader, so a text dropped, added or changed on
// the way (escapes, quotes, semicolons, brackets, blanks, repeated and emptied ids) shows.
TEST(LanguageDll, EveryIdOfTheCatalogReadsTheSameFromItsDll) {
    const std::pair<const char*, QString> libraries[] = {
        {KESTRIN_EXAMPLES "/lang/kestrin-en.txt", kEnglishDll},
        {KESTRIN_LANGUAGE_TESTS "/escapes.txt", QStringLiteral(KESTRIN_ESCAPES_DLL)}};
    for (const auto& [catalogFile, dllFile] : libraries) {
        const auto catalog = TextCatalog::parse(readBytes(catalogFile));
        ASSERT_TRUE(catalog && catalog->warnings().empty()) << catalogFile;
        const HMODULE module = LoadLibraryExW(wide(dllFile).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr) << dllFile.toStdString();
        Tally tally(catalogFile);
        std::size_t found = 0;
        for (UINT id = 0; id <= 0xFFFF; ++id) {
            wchar_t units[256];
            const int length = LoadStringW(module, id, units, 256);
            found += length > 0;
            tally.same(catalog->lookup(static_cast<int32_t>(id)).value_or(""),
                       QString::fromWCharArray(units, length).toStdString(), "id " + std::to_string(id));
        }
        FreeLibrary(module);
        EXPECT_EQ(std::make_pair(found, found > 10), std::make_pair(catalog->size(), true)) << catalogFile;
    }
}

}  // namespace
}  // namespace kestrin::test
