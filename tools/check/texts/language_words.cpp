#include "check/texts/language_words.h"

#include "check/texts/utf8.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <unicode/uchar.h>

namespace tool::check
{
namespace
{

struct LanguageRow
{
    std::string_view language;
    std::string_view words;
};

constexpr LanguageRow languageRows[] = {
    {"en", "the and of is are with this that you your was were been be have has cannot which these from by for not it "
           "to or if when will would should could there its their than then into about please must other"},
    {"de",
     "datei dateien fehler ungültige ungültiger ungültig keine werden kein gefunden verwenden ordner der die das und "
     "nicht ist sind wird werden wurde mit für auf dem den ein eine einen einem von zu sie ihr "
     "ihre bitte kann können konnte nach bei oder aus im zum zur dass wenn noch nur alle auch diese dieser was will"},
    {"fr", "fichiers erreur échec aucun aucune lors utilisez cet trouvé dossier nom le la les des est une un pas ne "
           "pour dans avec vous votre vos sur du être sont qui cette ce ces il au aux "
           "or ou et de en que par impossible fichier veuillez"},
    {"es", "archivos al error inválido ningún usar carpeta encontrado nombre cuando el la los las de que no en por "
           "para con una un se es su sus del está este esta al o y como pero ha han "
           "puede archivo"},
    {"it", "errore nessun nessuna quando usare cartella trovato nome viene il lo la gli le di che non per con una un è "
           "sono del della dei delle nel nella si questo questa al alla "
           "ed e o impossibile file"},
    {"pt", "arquivo arquivos erro falha nenhum usar pasta quando inválido nome o a os as de que não em para com uma um "
           "se é do da dos das no na por este esta ao foi e ou seu sua"},
    {"nl", "bestand bestanden fout geen ongeldig ongeldige gebruik map gevonden wanneer naam de het een en van is niet "
           "met voor op te dat zijn wordt kan deze om bij uit kon naar u uw dit worden of was"},
    {"pl", "plik pliku plików błąd nieprawidłowy podczas użyj nazwa każdy zostać został nieznany nie w na do się z "
           "jest że dla i o lub przez po od są to oraz można ten to by tego jako przy ze tej tym czy"},
    {"cs", "soubor souboru souborů chyba nelze neplatný neplatná neznámý použijte název který byla je se na v není pro "
           "do že z s jsou a nebo být za při ze od po by jako bylo byl to by do tento této"},
    {"sv", "filen filer fel kunde inga ingen ogiltig ogiltigt okänd använd mappen namn inget och att är inte det en "
           "ett för med på av till som kan från den har vid om eller ska kunde du din all"},
    {"da", "filen filer fejl ingen ugyldig ugyldigt ukendt brug mappen navn intet og at er ikke det en et for med på "
           "af til som kan fra den har ved om eller skal kunne du din blev by"},
    {"fi", "tiedosto tiedostoa tiedoston virhe voitu virheellinen tuntematon käytä nimi ja ei on ole tai se että voi "
           "kun joka tämä ovat myös jos mutta ole olla sekä kuin"},
    {"hu", "fájl fájlt hiba érvénytelen ismeretlen nincs mappa név fájlok a az és nem egy hogy is van meg el ez vagy "
           "ezt csak már sem volt kell lehet"},
    {"tr", "dosya dosyası hata geçersiz bilinmeyen kullan klasör adı dosyalar ve bir bu için ile değil olarak da de ya "
           "daha gibi veya sonra olan kadar var yok"},
    {"ro", "fișier fișierul eroare eșuat necunoscut folosește nume când și nu este pentru cu în la din sau să un o de "
           "pe al ale care sunt fi prin"},
    {"ru", "файл файла файлы ошибка удалось использовать имя можно нельзя пожалуйста этот будет и в не на с по для что "
           "это из или как был была было вы ваш к от при его нет есть уже только все"},
    {"uk", "файл файлу файли помилка вдалося використати ім назва можна цей буде і в не на з по для що це або як був "
           "була було ви ваш до від при його немає є та у й"},
    {"bg", "файл файла файлове грешка може име този бъде няма и в не на с по за че това от или като беше е са да се "
           "при вие вашия към"},
};

// Not those that are at home in several languages: "name", "message", "download".
constexpr std::string_view english =
    "the and of are with this that you your was were been have has cannot which these would should could there their "
    "than into about please must another again already when while after before until because "
    "open close save delete remove cancel quit exit undo redo copy paste cut search find replace show hide "
    "sort rename choose select enter press click try check move create add edit view help settings "
    "folder folders files new next back previous yes done continue retry ignore apply browse "
    "size time failed failure unable invalid unknown missing wrong loading saving "
    "searching sending receiving connecting connected disconnected waiting found all none more less "
    "left right up down first last picture pictures "
    "sign signed log logged out off turn change changes changed not welcome thank thanks hello free space full empty "
    "selected only every each here where what who how why will shall may might "
    "be being do does did is it its from by for to or if then other some any many much few "
    "title tags keywords brightness contrast printer keyboard mouse screen language password username sharing shared "
    "use used using see can new so they them but instead back below above since though because through "
    "expected created creating specified given allowed supported required consider example within without "
    "printing copying moving deleting importing exporting downloading uploading updating installing preparing checking";

/** The languages of every word, in a table of twice its size. */
class Lexicon
{
public:
    Lexicon()
    {
        for (size_t i = 0; i < std::size(languageRows); ++i)
            add(languageRows[i].words, 1U << i);
        add(english, englishBit);
    }

    uint32_t operator[](uint32_t hash) const
    {
        for (size_t at = hash % m_cells.size(); m_cells[at].bits != 0; at = (at + 1) % m_cells.size())
            if (m_cells[at].hash == hash)
                return m_cells[at].bits;
        return 0;
    }

    static constexpr uint32_t englishBit = 1U << 31U;

private:
    struct Cell
    {
        uint32_t hash = 0;
        uint32_t bits = 0;
    };

    void add(std::string_view words, uint32_t bits)
    {
        anyWordOf(words, [this, bits](std::string_view word) {
            const uint32_t hash = hashOfWord(word);
            size_t at = hash % m_cells.size();
            while (m_cells[at].bits != 0 && m_cells[at].hash != hash)
                at = (at + 1) % m_cells.size();
            m_cells[at].hash = hash;
            m_cells[at].bits |= bits;
            return false;
        });
    }

    std::array<Cell, 4096> m_cells{};
};

const Lexicon &lexicon()
{
    static const Lexicon made;
    return made;
}

struct RelationRow
{
    std::string_view language;
    std::string_view source, goal, whole;
};

/** Words in front of an argument that they relate. A "de" is left out as a source: it is as often a genitive. */
constexpr RelationRow prepositions[] = {
    {"en", "from", "to into", "of"},
    {"de", "aus", "nach zu zum zur in auf an", "von"},
    {"fr", "depuis", "vers à dans en sur au", "sur de"},
    {"es", "desde", "a al hacia en", "de"},
    {"it", "da dal dalla", "a in su verso al nel nella", "di su"},
    {"pt", "desde", "para a em ao no na", "de"},
    {"nl", "uit", "naar in op tot", "van"},
    {"pl", "z ze od", "do na w", "z"},
    {"cs", "z ze od", "do na v", "z"},
    {"sv", "från", "till i på", "av"},
    {"da", "fra", "til i på", "af"},
    {"nb", "fra", "til i på", "av"},
    {"ro", "din de la", "în la pe către", "din"},
    {"el", "από", "σε προς στο στον στη στην", "από"},
    {"ru", "из с со от", "в во на к до", "из"},
    {"uk", "з із зі від", "у в до на к", "з із"},
    {"bg", "от из", "в на към до", "от"},
    {"ar", "من", "إلى في الى", "من"},
    {"he", "מ מתוך", "אל ל", "מתוך"},
};

/** Particles behind an argument that they relate. */
constexpr RelationRow particles[] = {
    {"ja", "から", "に へ まで", ""},
    {"ko", "에서 부터", "으로 로", ""},
    {"zh", "", "", ""},
};

/** A row of `prepositions` whose words can be asked for. */
struct PrepositionSets
{
    explicit PrepositionSets(const RelationRow &row)
        : language(row.language), source(row.source), goal(row.goal), whole(row.whole)
    {
    }

    std::string_view language;
    WordSet source, goal, whole;
};

/** The sets of a language, which are made once, of all rows of a list; null where there is no row. */
template <typename Sets, typename Rows> const Sets *setsOf(const Rows &list, std::string_view language)
{
    static const std::vector<Sets> made(std::begin(list), std::end(list));
    const auto found =
        std::find_if(made.begin(), made.end(), [language](const Sets &row) { return row.language == language; });
    return found != made.end() ? &*found : nullptr;
}

const PrepositionSets *prepositionsOf(std::string_view language)
{
    return setsOf<PrepositionSets>(prepositions, language);
}

bool beginsWithOneOf(std::string_view text, std::string_view words)
{
    return anyWordOf(words, [text](std::string_view word) { return text.substr(0, word.size()) == word; });
}

/** Of which only the first letter may be a capital. */
std::string inSmallLetters(std::string_view word)
{
    std::string small(word);
    if (static_cast<unsigned char>(small[0]) < 0x80)
    {
        small[0] = static_cast<char>(small[0] | 0x20);
        return small;
    }
    size_t at = 0;
    const char32_t first = static_cast<char32_t>(u_tolower(static_cast<UChar32>(takeUtf8(word, at))));
    if (first >= 0x80 && first < 0x800)
        small = std::string{static_cast<char>(0xC0U | first >> 6U), static_cast<char>(0x80U | (first & 0x3FU))} +
                std::string(word.substr(at));
    return small;
}

struct DenialRow
{
    std::string_view language;
    std::string_view words, beginnings, parts;
};

/** A language with words that deny, how others begin that do it without such a word, and parts of words. */
constexpr DenialRow denials[] = {
    {"en", "not cannot never without nothing none nor neither no t", "", ""},
    {"de", "nicht kein keine keinen keiner keinem keines nie niemals ohne nichts niemand weder nein kaum verboten",
     "fehl schlug scheit gescheit verweiger verbiete abwesen nicht unm ung unb unv uner unt unz unk unl untersag", ""},
    {"fr", "ne n pas sans aucun aucune jamais rien ni non",
     "impossib éche écho in im ir dés manqu refus interdi err absen", ""},
    {"es", "no ni sin nunca ningún ninguna ninguno nada", "imposib in im ir des fall err falta", ""},
    {"it", "non senza nessun nessuna nessuno mai nulla né", "impossib in im ir dis err manca fallit evit altr negativ",
     ""},
    {"pt", "não sem nunca nenhum nenhuma nada nem", "impossív in im ir des falh err ausent", ""},
    {"nl", "niet geen nooit zonder niets noch", "on mis fout ontbre", ""},
    {"pl", "nie bez nigdy brak ani", "nie żad błąd bez pomi ujemn", ""},
    {"cs", "bez nic", "ne žádn chyb selha", ""},
    {"sv", "inte ej utan aldrig ingen inget inga varken icke", "o miss fel sakna förbju in", ""},
    {"da", "ikke uden aldrig ingen intet hverken", "u mis fejl mangl for", ""},
    {"ru", "не ни нет без кроме", "не без невоз ошиб отсут запре отказ сбой отлич вне отриц", ""},
    {"uk", "не ні немає без крім", "не без помил відсут заборон відмо збій", ""},
    {"ja", "", "", "ない ません ず なし なく なけ なか 不 無 非 未 失敗 誤 エラー 禁止 抑止 せん"},
    {"zh", "", "", "不 无 無 没 沒 未 非 别 勿 失败 失敗 错误 錯誤 禁 缺 否"},
};

/** A row of `denials` whose words can be asked for. */
struct DenialSets
{
    explicit DenialSets(const DenialRow &row)
        : language(row.language), words(row.words), beginnings(row.beginnings), parts(row.parts)
    {
    }

    std::string_view language;
    WordSet words;
    std::string_view beginnings, parts;
};

const DenialSets *denialOf(std::string_view language)
{
    return setsOf<DenialSets>(denials, language);
}

} // namespace

uint32_t languageBit(std::string_view language)
{
    for (size_t i = 0; i < std::size(languageRows); ++i)
        if (languageRows[i].language == language)
            return 1U << i;
    return 0;
}

std::string_view languageOfBit(uint32_t bits)
{
    for (size_t i = 0; i < std::size(languageRows); ++i)
        if ((bits & 1U << i) != 0)
            return languageRows[i].language;
    return "";
}

uint32_t languagesOfWord(uint32_t hash)
{
    return lexicon()[hash] & ~Lexicon::englishBit;
}

bool isEnglishWord(uint32_t hash)
{
    return (lexicon()[hash] & Lexicon::englishBit) != 0;
}

bool isWrittenInLatin(std::string_view language)
{
    constexpr std::string_view others =
        "am ar be bg bn bo dz el fa gu he hi hy ja ka kk km kn ko ky lo mk ml mn mr my ne pa "
        "ps ru sd si ta te tg th ti ug uk ur yi zh";
    return language.size() != 2 || others.find(language) == std::string_view::npos;
}

bool isWrittenWithBlanks(std::string_view language)
{
    constexpr std::string_view others = "bo dz ja km lo my th zh";
    return language.size() != 2 || others.find(language) == std::string_view::npos;
}

bool marksInFront(std::string_view language, uint32_t word, Relation relation)
{
    const PrepositionSets *const row = prepositionsOf(language);
    if (row == nullptr)
        return false;
    return (relation == Relation::source && row->source.has(word)) ||
           (relation == Relation::goal && row->goal.has(word)) || (relation == Relation::whole && row->whole.has(word));
}

Relation markedBehind(std::string_view language, std::string_view behind)
{
    for (const RelationRow &row : particles)
        if (row.language == language)
        {
            if (beginsWithOneOf(behind, row.source))
                return Relation::source;
            if (beginsWithOneOf(behind, row.goal))
                return Relation::goal;
        }
    return Relation::none;
}

bool knowsDenial(std::string_view language)
{
    return denialOf(language) != nullptr;
}

bool denies(std::string_view language, const Tokens &tokens)
{
    const DenialSets *const row = denialOf(language);
    if (row == nullptr)
        return false;
    if (!row->parts.empty())
        return anyWordOf(row->parts, [&tokens](std::string_view part) {
            return tokens.text().find(part) != std::string_view::npos;
        });
    return std::any_of(tokens.begin(), tokens.end(),
                       [row](const Token &token) { return token.isWord() && row->words.has(token.content); });
}

bool hintsAtDenial(std::string_view language, const Tokens &tokens)
{
    const DenialSets *const row = denialOf(language);
    return row == nullptr || denies(language, tokens) ||
           std::any_of(tokens.begin(), tokens.end(), [row, &tokens](const Token &token) {
               constexpr uint8_t shortest = 4;
               return token.isWord() && token.letters >= shortest &&
                      beginsWithOneOf(inSmallLetters(tokens.text(token)), row->beginnings);
           });
}

} // namespace tool::check
