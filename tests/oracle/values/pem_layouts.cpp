#include "oracle/values/pem_layouts.h"

#include <cstddef>

namespace PemLayouts {
namespace {

std::string ReplacedEverywhere(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t place = text.find(from); place != std::string::npos;
         place = text.find(from, place + to.size()))
        text.replace(place, from.size(), to);
    return text;
}

/// The lines of a block, each with its end.
struct Parts {
    explicit Parts(const std::string& block) {
        const std::size_t bodyBegin = block.find('\n') + 1;
        const std::size_t bodyEnd = block.find("-----END");
        begin = block.substr(0, bodyBegin);
        body = block.substr(bodyBegin, bodyEnd - bodyBegin);
        end = block.substr(bodyEnd);
    }
    std::string begin;
    std::string body;
    std::string end;
};

/// The block with another number of characters a line.
std::string InWidth(const std::string& block, std::size_t width) {
    const Parts parts(block);
    const std::string characters = ReplacedEverywhere(parts.body, "\n", "");
    std::string text = parts.begin;
    for (std::size_t i = 0; i < characters.size(); i += width)
        text += characters.substr(i, width) + "\n";
    return text + parts.end;
}

/// The block with this line between the first and the second line of its body.
std::string WithLine(const std::string& block, const std::string& line) {
    const Parts parts(block);
    const std::size_t second = parts.body.find('\n') + 1;
    return parts.begin + parts.body.substr(0, second) + line + "\n" + parts.body.substr(second) +
           parts.end;
}

constexpr char kNote[] = "Bag Attributes\n    localKeyID: 01 02\nsubject=CN = someone\n\n";

}  // namespace

const std::vector<Layout>& All() {
    using In = const Objects&;
    static const std::vector<Layout> layouts = {
        {"AsWritten", true, [](In o) { return o.block; }},
        {"TextBefore", true, [](In o) { return kNote + o.block; }},
        {"TextBehind", true, [](In o) { return o.block + "and so on\n"; }},
        {"CrLf", true, [](In o) { return ReplacedEverywhere(o.block, "\n", "\r\n"); }},
        {"CrLfAndText", true,
         [](In o) { return ReplacedEverywhere(kNote + o.block, "\n", "\r\n"); }},
        {"NoLastLineEnd", true, [](In o) { return o.block.substr(0, o.block.size() - 1); }},
        {"BlanksBehindLines", true,
         [](In o) { return ReplacedEverywhere(o.block, "\n", " \t\n"); }},
        {"ShortLines", true, [](In o) { return InWidth(o.block, 20); }},
        {"LinesOf76", true, [](In o) { return InWidth(o.block, 76); }},
        {"OneLongLine", true, [](In o) { return InWidth(o.block, 100000); }},
        {"OthersBefore", true, [](In o) { return o.before + o.block; }},
        {"OthersBehind", true, [](In o) { return o.block + o.behind; }},
        {"SeveralObjectsAndText", true,
         [](In o) {
             return ReplacedEverywhere(kNote + o.before + "\n" + kNote + o.block + o.behind, "\n",
                                       "\r\n");
         }},

        {"OneCharacterALine", false, [](In o) { return InWidth(o.block, 1); }},
        {"LinesOf61", false, [](In o) { return InWidth(o.block, 61); }},
        {"LinesOf253", false, [](In o) { return InWidth(o.block, 253); }},
        {"LinesOf254", false, [](In o) { return InWidth(o.block, 254); }},
        {"BlankBeforeBodyLines", false,
         [](In o) {
             const Parts parts(o.block);
             const std::string body = " " + ReplacedEverywhere(parts.body, "\n", "\n ");
             return parts.begin + body.substr(0, body.size() - 1) + parts.end;
         }},
        {"BlankBeforeAllLines", false,
         [](In o) { return " " + ReplacedEverywhere(o.block, "\n", "\n "); }},
        {"CrOnly", false, [](In o) { return ReplacedEverywhere(o.block, "\n", "\r"); }},
        {"BlankForLineEnds", false, [](In o) { return ReplacedEverywhere(o.block, "\n", " "); }},
        {"FormFeedsBehindLines", false,
         [](In o) { return ReplacedEverywhere(o.block, "\n", "\f\n"); }},
        {"EmptyLineFirst", false,
         [](In o) {
             const Parts parts(o.block);
             return parts.begin + "\n" + parts.body + parts.end;
         }},
        {"EmptyLineWithin", false, [](In o) { return WithLine(o.block, ""); }},
        {"EmptyLineLast", false,
         [](In o) {
             const Parts parts(o.block);
             return parts.begin + parts.body + "\n" + parts.end;
         }},
        {"Header", false,
         [](In o) {
             const Parts parts(o.block);
             return parts.begin + "X-Note: hello\n\n" + parts.body + parts.end;
         }},
        {"CommentWithin", false, [](In o) { return WithLine(o.block, "# a comment"); }},
        {"ByteOrderMark", false, [](In o) { return "\xEF\xBB\xBF" + o.block; }},
        {"ZeroByteBefore", false, [](In o) { return std::string("zero\0\n", 6) + o.block; }},
        {"TextOnTheFirstLine", false, [](In o) { return "text " + o.block; }},
        {"VeryLongLineBefore", false, [](In o) { return std::string(1000, 'x') + "\n" + o.block; }},
        {"FirstLineAtTheBufferEnd", false, [](In o) { return std::string(254, 'x') + o.block; }},
        {"FirstLineBeforeTheBufferEnd", false,
         [](In o) { return std::string(253, 'x') + o.block; }},
        {"BrokenOffBlockBefore", false,
         [](In o) { return Parts(o.block).begin + Parts(o.block).body + o.block; }},
        {"TwoFirstLines", false, [](In o) { return Parts(o.block).begin + o.block; }},
        {"NoLastLine", false, [](In o) { return Parts(o.block).begin + Parts(o.block).body; }},
        {"AnotherLastLine", false,
         [](In o) {
             return Parts(o.block).begin + Parts(o.block).body + "-----END NOTHING-----\n";
         }},
        {"LowerCase", false, [](In o) { return ReplacedEverywhere(o.block, "BEGIN", "begin"); }},
        {"FourDashes", false, [](In o) { return ReplacedEverywhere(o.block, "-----", "----"); }},
        {"SixDashes", false, [](In o) { return ReplacedEverywhere(o.block, "-----", "------"); }},
        {"NoBase64", false, [](In o) { return WithLine(o.block, "AAA!"); }},
        {"LineTooMany", false, [](In o) { return WithLine(o.block, "AAAA"); }},
        {"FirstBodyLineMissing", false,
         [](In o) {
             const Parts parts(o.block);
             return parts.begin + parts.body.substr(parts.body.find('\n') + 1) + parts.end;
         }},
        {"EmptyBody", false, [](In o) { return Parts(o.block).begin + Parts(o.block).end; }},
        {"OthersOnly", false, [](In o) { return o.before; }},
        {"Nothing", false, [](In) { return std::string(); }},
    };
    return layouts;
}

}  // namespace PemLayouts
