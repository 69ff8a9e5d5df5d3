#include "tests/generators/Languages.h"

#include <algorithm>
#include <unordered_set>

namespace kbx {
namespace {

constexpr std::string_view kEnglish =
    "the to of and a in for is you that it on this be with are we your have as will not at or "
    "from please if can our by i an was but all has any there they so what when would which me "
    "about just know thanks up out new one more time do see get meeting no my been mail need like "
    "only some their other how message send also work week report day let could next hi regards "
    "attached office invoice team project monday friday tomorrow schedule question list contract "
    "number price order version update change review draft budget letter harbour ledger garden";
constexpr std::string_view kLatinStarts =
    "b c d f g h l m n p r s t v w br cr st tr pl sh th ch sp gr fl _";
constexpr std::string_view kLatinEnds = "_ _ _ n r s t l nd st m ck rt";

constexpr LanguageTraits kLanguages[] = {
    {"en", "us-ascii", kEnglish, kLatinStarts, "a e i o u ai ea ou ee o a e", kLatinEnds, " ", ". ",
     52},
    {"fr", "iso-8859-1", "le la de et à les des un une que pour est dans vous ce il où été",
     kLatinStarts, "a é è ê i o u ou ai eu à î ô ç", "_ _ s t r nt x", " ", ". ", 7},
    {"de", "iso-8859-1", "die der und in zu den das nicht von sie ist des für über mit ä ö",
     kLatinStarts, "a e i o u ä ö ü ei ie au", "_ n en er st ß t ch ng", " ", ". ", 7},
    {"es", "windows-1252", "de la que el en y a los del se las por un para con no una más",
     "b c d g h l m n p r s t v ñ tr qu", "a e i o u á é í ó ú ia io", "_ _ s n r l", " ", ". ", 5},
    {"pl", "iso-8859-2", "i w na z do się nie że to jest o jak ale po za od przez",
     "b c d g k ł m n p r s t w z ż sz cz prz", "a e i o u ą ę ó y", "_ k ł ń ć ś ź m", " ", ". ",
     2},
    {"tr", "iso-8859-9", "ve bir bu da de için ile çok ne daha gibi olarak",
     "b c ç d g k l m n s ş t y", "a e ı i o ö u ü", "_ n r k ş ğ l", " ", ". ", 1},
    {"ru", "koi8-r", "и в не на я что с по это как а к но за из у мы вы для",
     "б в г д ж з к л м н п р с т ф х ц ч ш пр ст", "а е ё и о у ы э ю я", "_ _ й н р ст ть м к",
     " ", ". ", 6},
    {"uk", "windows-1251", "і в не на що з до як це та у за від але",
     "б в г д ж з к л м н п р с т ч ш", "а е є и і ї о у ю я", "_ й н р ть м к", " ", ". ", 1},
    {"el", "iso-8859-7", "και το να του η της με που την από για είναι",
     "β γ δ θ κ λ μ ν π ρ σ τ φ χ", "α ε η ι ο υ ω ά έ ή ί ό ώ", "_ ς ν ρ", " ", ". ", 2},
    {"ar", "windows-1256", "في من على إلى أن عن مع هذا التي كان ما لا",
     "ال ب ت ث ج ح د ر س ش ع ف ق ك ل م ن ه و", "ا و ي _ ة", "_ ن ر د م ب ل", " ", ". ", 2},
    {"he", "windows-1255", "של את על לא זה עם הוא גם כי אני", "א ב ג ד ה ח ט כ ל מ נ ס ע פ ק ר ש ת",
     "ו י _ א", "_ ת ל ר ש ב", " ", ". ", 2},
    {"hi", "utf-8", "के में की है और से का को पर यह", "क ख ग च ज ट त द न प ब म य र ल व श स ह",
     "ा ि ी ु े ो _ ं", "_ र न ल त", " ", "। ", 1},
    {"zh", "gb2312", "",
     "的 一 是 不 了 在 人 有 我 他 这 中 大 来 上 国 个 到 说 们 为 子 和 你 地 出 道 也 时 年",
     "得 就 那 要 下 以 生 会 自 着 去 之 过 家 学 对 可 里 后 小 么 心 多 天 而 能 好 都 然 没 _ "
     "_",
     "_ _ 日 于 起 还 发 成 事 只 作 当 想 看 文 无 开 手 十 用 主 行 方 又 如 前 所 本 见 经", "",
     "。", 4},
    {"zh-Hant", "big5", "",
     "的 一 是 不 了 在 人 有 我 他 這 中 大 來 上 國 個 到 說 們 為 電 郵 件",
     "會 學 對 裡 後 過 發 與 從 還 進 經 頭 開 動 見 _", "_ _ 日 事 成 長 間 現 實 點", "", "。",
     1},
    {"ja", "iso-2022-jp", "",
     "の に は を た が で て と し れ さ あ い る 会 議 資 料 電 子 送 信 日 本 東 京 連 絡",
     "か き く け こ な ま み も り ら メ ー ル ト ス ン 件 名 _", "_ _ す ます です した ない", "",
     "。", 3},
    {"ko", "euc-kr", "", "가 나 다 라 마 바 사 아 자 하 고 이 그 저 우 회 서 전 보 대 한",
     "는 을 를 에 의 로 도 서 니 기 지 사 _ _", "_ _ 다 요 까 는", " ", ". ", 2},
    {"th", "tis-620", "", "ก ข ค ง จ ช ด ต ท น บ ป พ ม ย ร ล ว ส ห อ", "า ี ิ ุ ู ะ ั _",
     "_ น ม ง ก บ ย", "", " ", 1},
    {"vi", "utf-8", "của và là có cho không được trong các một người",
     "b c d đ g h l m n ph th tr v x", "a ă â e ê i o ô ơ u ư à ả ã ạ ế ộ ữ", "_ n ng nh c t m",
     " ", ". ", 1},
};

constexpr std::size_t kFrequentLanguageWords = 40000;
constexpr std::size_t kOtherLanguageWords = 8000;
constexpr std::size_t kLineLength = 72;

std::vector<std::string> split(std::string_view list) {
  std::vector<std::string> words;
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(' '), list.size());
    words.emplace_back(list.substr(0, end) == "_" ? "" : list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return words;
}

/// Makes words until there are enough of them, or for as long as new ones turn up.
std::vector<std::string> makeWords(const LanguageTraits& traits) {
  std::vector<std::string> words = split(traits.firstWords);
  const auto starts = split(traits.starts), middles = split(traits.middles),
             ends = split(traits.ends);
  const std::size_t wanted = traits.share > 50 ? kFrequentLanguageWords : kOtherLanguageWords;
  std::unordered_set<std::string> known(words.begin(), words.end());
  Random random(traits.share, traits.tag.size() + static_cast<unsigned char>(traits.tag[1]));
  for (std::size_t attempt = 0; words.size() < wanted && attempt < 10 * wanted; ++attempt) {
    std::string word;
    // Frequent words are short.
    for (auto left = random.between(1, words.size() < wanted / 20 ? 2 : 4); left > 0; --left)
      word += starts[random.below(starts.size())] + middles[random.below(middles.size())] +
              (left == 1 ? ends[random.below(ends.size())] : "");
    if (!word.empty() && known.insert(word).second) words.push_back(word);
  }
  return words;
}

/// How many characters a text has.
std::size_t width(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
  }));
}

void capitalize(std::string& text, std::size_t at) {
  if (at < text.size() && text[at] >= 'a' && text[at] <= 'z')
    text[at] = static_cast<char>(text[at] - 'a' + 'A');
}

}  // namespace

Language::Language(const LanguageTraits& traits) : _traits(traits), _words(makeWords(traits)) {
  std::uint64_t sum = 0;
  for (std::size_t rank = 0; rank < _words.size(); ++rank)
    _sums.push_back(sum += (std::uint64_t{1} << 40) / (rank + 1));
}

const std::string& Language::word(Random& random) const {
  const std::uint64_t drawn = random.next() % _sums.back();
  const auto at = std::upper_bound(_sums.begin(), _sums.end(), drawn) - _sums.begin();
  return _words[static_cast<std::size_t>(at)];
}

std::string Language::phrase(Random& random, std::size_t words) const {
  std::string text = word(random);
  for (std::size_t i = 1; i < words; ++i) (text += _traits.space) += word(random);
  capitalize(text, 0);
  return text;
}

std::string Language::paragraph(Random& random, std::size_t words) const {
  std::string text;
  std::size_t lineStart = 0;
  while (words > 0) {
    const std::size_t sentence = std::min(words, random.between(5, 18));
    addSentence(random, sentence, text, lineStart);
    words -= sentence;
  }
  while (text.ends_with(' ')) text.pop_back();
  return text += '\n';
}

void Language::addSentence(Random& random, std::size_t words, std::string& text,
                           std::size_t& lineStart) const {
  const std::size_t start = text.size();
  for (std::size_t i = 0; i < words; ++i) {
    if (i > 0) text += _traits.space;
    if (width(std::string_view(text).substr(lineStart)) > kLineLength) {
      while (text.back() == ' ') text.pop_back();
      text += '\n';
      lineStart = text.size();
    }
    text += random.chance(3) ? std::to_string(random.below(10000)) : word(random);
  }
  capitalize(text, start);
  text += _traits.stop;
}

std::span<const Language> languages() {
  static const std::vector<Language> all(std::begin(kLanguages), std::end(kLanguages));
  return all;
}

const Language& anyLanguage(Random& random) {
  std::size_t drawn = random.below(100);
  for (const Language& language : languages()) {
    if (drawn < language.traits().share) return language;
    drawn -= language.traits().share;
  }
  return languages().front();
}

}  // namespace kbx
