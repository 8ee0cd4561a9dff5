/// \file
/// BLanguageMap: the translation of keys into the words of the current language. A key is a text
/// that starts with a dollar sign ("$ERR_CREATE_FILE"); the map holds, per key, its default text
/// and the text of the current language. Keys compare without regard to case. The map is filled
/// from language files (UTF-16LE tables of key, default text and translation), written back to
/// them, and reference files are merged with an old translation. docs/language-files.md tells
/// the decisions: the reverse index that keeps filling linear, the file grammar, the merge.
#pragma once

#include <map>
#include <memory>
#include <qv/core/BSmartObj.h>
#include <qv/core/Export.h>
#include <qv/core/containers/BArray.h>
#include <qv/core/strings/WString.h>
#include <vector>

class BFile;

class QV_EXPORT BLanguageMap : public BSmartObj {
public:
    QV_DECLARE_CLASSNAME(BLanguageMap)

    /// Selects a map in TranslateBack: 0 the default map, any other value the current map.
    enum ELanguage { DEFAULT = 0, CURRENT = 1 };

    /// @name Result codes of Add; each is the id of a string-table row holding its key.
    static constexpr int kInvalidId = 7356;     // "$ERR_ML_INVALID_ID": nothing added
    static constexpr int kIdWithoutText = 7357; // "$ERR_ML_ID_WITHOUT_TEXT": added
    static constexpr int kIdNotBiunique = 7358; // "$ERR_ML_ID_NOT_BIUNIQUE": added
    static constexpr int kIdNotUnique = 7359;   // "$ERR_ML_ID_NOT_UNIQUE": nothing changed
    /// Result of an import in which at least one entry drew an answer from Add.
    static constexpr int kImportError = 7360;      // "$ERR_ML_ERROR"
    static constexpr int kNoFileMatches = 32767;   // "$ERR_ERROR"
    static constexpr int kCannotCreateFile = 5002; // "$ERR_CREATE_FILE"
    /// @name Plain results of the merge (not string-table ids).
    static constexpr int kMergeNoReferenceDirectory = 1;
    static constexpr int kMergeNoTranslationDirectory = 2;
    static constexpr int kMergeCannotOpenReference = 3;
    static constexpr int kMergeCannotCreateTarget = 5;
    static constexpr int kMergeNoFileMatches = 6;

    /// An empty map: both flags off, no language.
    BLanguageMap();
    ~BLanguageMap() override;

    /// @name Filling and asking the map. No lock: one thread fills the map before others read.
    /// Adds key with its default text and the text of the current language. 0 when added;
    /// kIdWithoutText (reporting missing texts and a text missing) and kIdNotBiunique (another
    /// key without underscore has the same default text, ignoring case) are warnings: the entry
    /// was added. kInvalidId (not a key) and kIdNotUnique (present and replace false) add
    /// nothing. With useDefault an empty text takes the default text.
    int Add(WString key, WString defaultText, WString text, bool replace, bool useDefault);
    /// Empties both maps; the language name stays.
    void Clear();
    /// The key is in the map (case-blind).
    bool Includes(WString key) const;
    /// The text of a key of the current map; any other text, a key not in the map included,
    /// comes back unchanged. In test mode a found text is framed by two '*'.
    WString Translate(WString text) const;
    /// Translates every key inside a sentence: a dollar sign and the letters, digits and
    /// underscores behind it. Inserted text is not scanned again.
    WString TranslateExt(WString text) const;
    /// Counts the keys of the chosen map whose text equals text (case-blind) and that carry
    /// prefix (see below); keys receives them in ascending order, separated by ",", and stays
    /// as it was when none matches. A prefix of "$" selects the keys without underscore, any
    /// other non-empty prefix the keys that start with it and an underscore ("$ERR" the error
    /// keys), an empty one every key.
    int TranslateBack(WString text, WString& keys, WString prefix, ELanguage language) const;
    /// The name of the language last imported with ImportMapFiles (its directory's name).
    WString CurrentLanguage();
    /// In test mode translated texts are framed by '*', so untranslated text stands out.
    void ActivateTestMode(bool on);
    /// Makes Add answer kIdWithoutText for an entry without default text or text.
    void SetReportMissingTranslations(bool on);
    bool GetReportMissingTranslations() const;

    /// One key of the map with its default text and its text in the current language (empty
    /// where the map has none).
    struct Entry {
        WString key;
        WString defaultText;
        WString text;
    };
    /// Every key of the map in key order: for tools that show a language file.
    std::vector<Entry> Entries() const;

    /// @name Language files: UTF-16LE tables, one record per line: key, default text, text.
    /// Imports every file of directory matching pattern (Windows wildcards), with useDefault,
    /// and makes the directory's last component the current language. 0; kImportError when
    /// an entry of some file drew an answer from Add; 1 when some file could not be opened (the
    /// last non-zero result of a file wins, and every file is read); kNoFileMatches when none
    /// matches, and then the language stays. With a report, each file appends its lines to it.
    int ImportMapFiles(WString directory, WString pattern, WString* report, bool replace);
    /// Writes the current map in key order, one line per key with an empty second cell. Texts
    /// are written as they stand: a tab or line feed in a text spoils its line for a reader.
    /// 0, or kCannotCreateFile.
    int ExportMapFile(WString path) const;
    /// Turns line feeds, carriage returns and tabs into `\\n`, `\\r` and `\\t` (a backslash stays
    /// single), which the reader turns back.
    static void ReplaceControlChars(WString& text);

    /// @name Merging a new reference file with an old translation into a target directory.
    /// Writes the reference file's lines to the target, each key with the old translation's
    /// text or, for a key the translation lacks, an empty text and "new entry!" (counted in
    /// newEntries). 0; kMergeCannotOpenReference; kMergeCannotCreateTarget. The count stays
    /// on failure. Shares nothing with other maps: merges with different targets may run on
    /// several threads.
    static int MergeMapFile(WString const& referenceDirectory, WString const& translationDirectory,
                            WString const& targetDirectory, WString const& fileName,
                            int& newEntries);
    /// Merges every reference file matching fileName; newEntries becomes the sum. 0, the last
    /// non-zero result of a file, kMergeNoReferenceDirectory, kMergeNoTranslationDirectory or
    /// kMergeNoFileMatches.
    static int MergeMapFiles(WString const& referenceDirectory, WString const& translationDirectory,
                             WString const& targetDirectory, WString const& fileName,
                             int& newEntries);

    /// @name The registered map, which QVTl and QVTlExt use.
    /// The registered map, possibly empty. Set it before translating threads start.
    static SP<BLanguageMap> Instance();
    /// Replaces the registered map; an empty pointer unregisters.
    static void RegisterInstance(SP<BLanguageMap> map);

private:
    struct State;

    BLanguageMap(BLanguageMap const&) = delete;
    BLanguageMap& operator=(BLanguageMap const&) = delete;

    bool Find(WString const& key, WString& text, bool current) const;
    int ImportMapFile(WString path, WString* report, bool replace, bool useDefault);

    static bool IsIdValid(WString key);
    static bool IsAlNumUnderscore(char16_t c);
    static bool HasPrefix(WString key, WString prefix);
    static unsigned short ReadCell(BFile& file, WString& cell);
    // onCell(i, cell) sees each cell as soon as it is read, while the rest of the line is
    // still to come: the import and the merge start their table searches there.
    template <class OnCell>
    static bool ReadLn(BFile& file, BArray<WString>& cells, unsigned long long count,
                       OnCell const& onCell);
    static unsigned short SkipLn(BFile& file);

    std::unique_ptr<State> m_state;
};
