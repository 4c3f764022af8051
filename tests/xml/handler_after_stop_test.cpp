// A tokenizer that was told to stop may still report what it had begun. Whatever comes then, in any
// order, a document handler stays whole, and its next document is as good as its first.
#include "saml/xml/xml_doc_handler_impl.h"
#include "support/xml_trees.h"

#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace Saml::Xml {
namespace {

struct Event {
    const char* name;
    std::function<void(XMLHandler&)> tell;
};

const char* kNoAttributes[] = {nullptr};
const char* kTwoAttributes[] = {"x", "1", "y", "2", nullptr};

const std::vector<Event>& Events() {
    static const std::vector<Event> events = {
        {"StartElement", [](XMLHandler& to) { to.StartElement("p:e", 1, 1, kNoAttributes); }},
        {"Attributes", [](XMLHandler& to) { to.StartElement("e", 1, 1, kTwoAttributes); }},
        {"EndElement", [](XMLHandler& to) { to.EndElement("e"); }},
        {"StartCData", [](XMLHandler& to) { to.StartCData(); }},
        {"EndCData", [](XMLHandler& to) { to.EndCData(); }},
        {"Characters", [](XMLHandler& to) { to.Characters("text", 4); }},
        {"Comment", [](XMLHandler& to) { to.Comment("note"); }},
        {"Instruction", [](XMLHandler& to) { to.ProcessingInstruction("pi", "data"); }},
        {"XmlDeclaration", [](XMLHandler& to) { to.XmlDeclaration("1.0", "UTF-8"); }},
    };
    return events;
}

enum class Answer { Taken, Stopped, AgainstTheRules };

Answer AnswerTo(const Event& event, XMLHandler& handler) {
    try {
        event.tell(handler);
        return Answer::Taken;
    } catch (const ParsingAbortedException&) {
        return Answer::Stopped;
    } catch (const InvalidArgumentException&) {  // such as a text outside the root
        return Answer::AgainstTheRules;
    }
}

/// Which limit is narrow, and what it lets pass before the event.
struct Limit {
    const char* name;
    long long size;
    long long nodes;
    long long depth;
};

class HandlerAfterStop : public testing::TestWithParam<Limit> {
  protected:
    void StartInsideTwoElements() {
        handler_->StartDocument(true, document_);
        handler_->StartElement("a", 1, 1, kNoAttributes);
        handler_->StartElement("b", 1, 1, kNoAttributes);
    }

    void ExpectNextDocument() {
        handler_->Reset();
        handler_->StartDocument(true, document_);
        handler_->StartElement("c", 1, 1, kNoAttributes);
        handler_->EndElement("c");
        EXPECT_EQ(Outline(*document_), "#document{c}");
        handler_->Reset();
    }

    Held<XMLHandler> handler_{
        CreateXMLDocumentHandler(GetParam().size, GetParam().nodes, GetParam().depth)};
    Held<Node> document_;
};

TEST_P(HandlerAfterStop, TakesAnyTwoFurtherEvents) {
    int stops = 0;
    for (const Event& crossing : Events())
        for (const Event& next : Events())
            for (const Event& last : Events()) {
                SCOPED_TRACE(std::string(crossing.name) + ", " + next.name + ", " + last.name);
                StartInsideTwoElements();
                if (AnswerTo(crossing, *handler_) == Answer::Stopped) {
                    ++stops;
                    AnswerTo(next, *handler_);
                    AnswerTo(last, *handler_);
                    // The tree holds together, whatever became of the last events.
                    EXPECT_EQ(Outline(*document_).rfind("#document{a{b", 0), 0U);
                    ExpectSoundLinks(*document_);
                }
                ExpectNextDocument();
            }
    const int perCrossing = static_cast<int>(Events().size() * Events().size());
    EXPECT_EQ(stops % perCrossing, 0);
    EXPECT_GE(stops / perCrossing, 5) << "elements, sections, texts, comments, instructions";
    std::cout << stops << " sequences after a stop\n";
}

INSTANTIATE_TEST_SUITE_P(XMLDocHandlerImpl, HandlerAfterStop,
                         testing::Values(Limit{"Size", 2, 100, 100}, Limit{"Nodes", 100, 2, 100},
                                         Limit{"Depth", 100, 100, 1}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace Saml::Xml
