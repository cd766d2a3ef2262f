#include "quorix/services/Search.h"

#include "quorix/services/XDataForm.h"
#include "quorix/xml/Finding.h"

namespace quorix {

namespace {

void AddPlainHit(const TextRules& rules, cSearchResults& results, const ParsedNode& item) {
    auto hit = results.Add(item.Attribute(u"jid"));
    for (ParsedNode child = item.FirstElement(); child; child = child.NextElement()) {
        if (child.Is(u"iq") || child.Is(u"query")) continue;
        hit->Fields()->Add(child.Name(), rules.Read(child.Text()));
    }
}

String JidOf(const ParsedNode& item) {
    for (ParsedNode field = item.FirstElement(); field; field = field.NextElement()) {
        if (field.Is(u"field") && field.AttributeIs(u"var", u"jid")) return field.Child(u"value").Text();
    }
    return {};
}

// The values of a data form stay wire text, unlike those of a plain hit.
void AddFormHit(const TextRules& /*rules*/, cSearchResults& results, const ParsedNode& item) {
    auto hit = results.Add(JidOf(item));
    for (ParsedNode field = item.FirstElement(); field; field = field.NextElement()) {
        if (!field.Is(u"field") || field.AttributeIs(u"var", u"jid")) continue;
        hit->Fields()->Add(field.Attribute(u"var"), field.Child(u"value").Text());
    }
}

std::shared_ptr<cSearchResults> ReadResults(const TextRules& rules, const ParsedNode& root) {
    auto results = std::make_shared<cSearchResults>();
    bool isForm = static_cast<bool>(FindExtension(root, u"jabber:x:data"));
    auto add = isForm ? AddFormHit : AddPlainHit;
    for (const ParsedNode& item : Outermost(root, u"item")) add(rules, *results, item);
    return results;
}

}  // namespace

void Search::Handle(SessionLink& link, const Stanza& stanza) {
    if (!stanza.IsResult()) return;
    fields_->Clear();
    if (FindTagBelow(stanza.root, u"item").HasText()) {
        HandleResults(link, stanza);
    } else if (FindTagBelow(stanza.root, u"instructions").HasText()) {
        HandleForm(link, stanza);
    }
}

void Search::HandleResults(SessionLink& link, const Stanza& stanza) {
    results_ = ReadResults(link.Text(), stanza.root);
    link.Raise(&SessionEvents::OnSearchResults, results_);
}

void Search::HandleForm(SessionLink& link, const Stanza& stanza) {
    form_ = std::make_shared<cXData>();
    for (ParsedNode child = stanza.Query().FirstElement(); child; child = child.NextElement()) {
        if (child.Is(u"x")) {
            FillXData(*form_, child);
        } else if (!child.Is(u"iq") && !child.Is(u"query")) {
            fields_->Add(child.Name(), child.Text());
        }
    }
    link.Raise(&SessionEvents::OnSearchFields, fields_);
}

void Search::Empty() {
    fields_->Clear();
    results_->items_.Clear();
}

}  // namespace quorix
