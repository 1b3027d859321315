// The control's texts from Windows language DLLs that a host loaded itself and handed over by
// module handle, under Wine: kestrin-en.dll made by the build and the fixture libraries (the
// standard one 32-bit, so only loadable as a data file, the custom one 64-bit).
#include <windows.h>

#include <QDir>
#include <QTableView>
#include <gtest/gtest.h>

#include "control/IClass.h"
#include "control/LanguageLibraries.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/TextCatalog.h"

namespace kestrin::test {
namespace {

std::wstring wide(const QString& path) { return QDir::toNativeSeparators(path).toStdWString(); }

const QString kEnglishDll = QStringLiteral(KESTRIN_ENGLISH_DLL);
const QString kFixtures = QStringLiteral(KESTRIN_FIXTURES "/lang/");
const char* const kSelectFirst = "Please select the item you want to remove first.";

LanguageHandle handleOf(HMODULE module) { return reinterpret_cast<LanguageHandle>(module); }

// The libraries as Windows hosts load them: plainly, as an image resource, as a data file.
struct Libraries {
    HMODULE english = LoadLibraryW(wide(kEnglishDll).c_str());
    HMODULE custom = LoadLibraryExW(wide(kFixtures + "custom.dll").c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    HMODULE standard = LoadLibraryExW(wide(kFixtures + "standard.dll").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    Libraries() {
        EXPECT_TRUE(english && custom && standard) << "a library did not load: " << GetLastError();
    }
    ~Libraries() {
        for (HMODULE m : {english, custom, standard})
            if (m) FreeLibrary(m);
    }
};

// What the operator sees of the texts: the two grids' headers, the item grid's tool tip and the message a
// command without a selected item shows.
struct Shown {
    std::string itemHeader, updateHeader, itemTip, message;
};

struct Host {
    RecordingPrompter prompter{Answer::Ok};
    IClass control;
    Host() {
        control.setPrompter(&prompter);
        QMetaObject::invokeMethod(&control, "NewLayout", Q_ARG(bool, false));
    }
    void set(const char* property, LanguageHandle handle) {
        EXPECT_TRUE(control.setProperty(property, qlonglong{handle})) << property;
    }
    Shown shown() {
        prompter.messages.clear();
        QMetaObject::invokeMethod(&control, "RemoveItem");
        return {control.itemGrid()->model()->headerData(1, Qt::Horizontal).toString().toStdString(),
                control.dbUpdateGrid()->model()->headerData(3, Qt::Horizontal).toString().toStdString(),
                control.itemGrid()->toolTip().toStdString(),
                prompter.messages.size() == 1 ? prompter.messages[0].text : "(none)"};
    }
};

void expectShown(const Shown& got, const Shown& want, const std::string& what) {
    EXPECT_EQ(got.itemHeader, want.itemHeader) << what;
    EXPECT_EQ(got.updateHeader, want.updateHeader) << what;
    EXPECT_EQ(got.itemTip, want.itemTip) << what;
    EXPECT_EQ(got.message, want.message) << what;
}

const Shown kDefaults{"<Field(s) or Function>", "<Function Properties>", "*=*+*", "*=*+*"};

// The custom library first, then the standard one, then the control's default, else "*=*+*".
TEST(LanguageDll, TheControlShowsTheTextsOfTheLibrariesItWasHanded) {
    const Libraries dll;
    const std::string englishTip =
        TextCatalog::parse(readBytes(KESTRIN_EXAMPLES "/lang/kestrin-en.txt"))->lookup(3195).value_or("?");
    const Shown english{"Field(s) or Function", "Function Properties", englishTip, kSelectFirst};
    const std::string customText = "Custom: Wählen Sie zuerst ein Element.", standardText = "Standard: select an item first.";
    const struct {
        HMODULE custom, standard;
        Shown want;
    } cases[] = {
        {nullptr, dll.english, english},
        {dll.custom, dll.english, {english.itemHeader, english.updateHeader, englishTip, customText}},
        {nullptr, dll.standard, {kDefaults.itemHeader, kDefaults.updateHeader, "*=*+*", standardText}},
        {dll.custom, dll.standard, {kDefaults.itemHeader, kDefaults.updateHeader, "*=*+*", customText}},
        {dll.english, dll.custom, english},
        {nullptr, nullptr, kDefaults},
    };
    for (const auto& c : cases) {
        Host host;
        host.set("LanguageDLL", handleOf(c.standard));
        host.set("CustomLanguageDLL", handleOf(c.custom));
        expectShown(host.shown(), c.want, "custom " + std::to_string(handleOf(c.custom)) + ", standard " +
                                              std::to_string(handleOf(c.standard)));
    }
}

// How the demo host loads its libraries, as a Windows host does: a DLL is loaded by Windows and freed
// again, a text catalog opened in the registry; a file Windows refuses is named in the reason.
TEST(LanguageDll, LoadLanguageLibraryGivesModuleHandlesForDllsAndRegistryHandlesForCatalogs) {
    const TempDir dir;
    writeBytes(dir / "broken.dll", "MZ this is no Windows image");
    const std::size_t catalogs = processLanguageLibraries().size();
    QString why;
    const LanguageHandle module = loadLanguageLibrary(kEnglishDll, &why);
    EXPECT_TRUE(why.isEmpty()) << why.toStdString();
    EXPECT_EQ(processLanguageLibraries().size(), catalogs);
    const LanguageHandle catalog = loadLanguageLibrary(KESTRIN_EXAMPLES "/lang/kestrin-en.txt");
    EXPECT_EQ(processLanguageLibraries().size(), catalogs + 1);
    for (const LanguageHandle handle : {module, catalog}) {
        Host host;
        host.set("LanguageDLL", handle);
        EXPECT_EQ(host.shown().message, kSelectFirst) << handle;
        EXPECT_TRUE(freeLanguageLibrary(handle)) << handle;
        EXPECT_FALSE(freeLanguageLibrary(handle)) << handle;
        EXPECT_EQ(host.shown().message, "*=*+*") << "after freeing " << handle;
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
        std::size_t found = 0, different = 0;
        for (UINT id = 0; id <= 0xFFFF; ++id) {
            wchar_t units[256];
            const int length = LoadStringW(module, id, units, 256);
            const auto expected = catalog->lookup(static_cast<int32_t>(id));
            const std::string got = QString::fromWCharArray(units, length).toStdString();
            found += length > 0;
            if (expected.value_or("") != got && ++different <= 5)
                ADD_FAILURE() << catalogFile << " id " << id << ": \"" << expected.value_or("") << "\" became \"" << got << "\"";
        }
        FreeLibrary(module);
        EXPECT_EQ(different, 0u) << catalogFile;
        EXPECT_EQ(found, catalog->size()) << catalogFile;
        EXPECT_GT(found, 10u) << catalogFile;
    }
}

}  // namespace
}  // namespace kestrin::test
