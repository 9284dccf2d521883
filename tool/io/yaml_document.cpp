// YamlDocument, YamlNode
#include "io/yaml_document.h"

#include <charconv>

#include "failure.h"

namespace zerklsc::tool {
namespace {

class Parser {
  public:
    explicit Parser(const std::string& bytes) {
        if (yaml_parser_initialize(&parser_) == 0)
            throw std::bad_alloc();
        yaml_parser_set_input_string(&parser_, reinterpret_cast<const unsigned char*>(bytes.data()),
                                     bytes.size());
    }
    ~Parser() { yaml_parser_delete(&parser_); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    yaml_parser_t* get() { return &parser_; }

    [[noreturn]] void fail(const std::string& name) const {
        data_failure("{}: is not valid YAML: line {}: {}", name, parser_.problem_mark.line + 1,
                     parser_.problem == nullptr ? "it cannot be read" : parser_.problem);
    }

  private:
    yaml_parser_t parser_{};
};

// The time that libyaml takes grows with the square of the depth.
void check_depth(const std::string& bytes, const std::string& name) {
    constexpr int most_levels = 100;
    Parser parser(bytes);
    yaml_event_type_t type = YAML_NO_EVENT;
    for (int depth = 0; type != YAML_STREAM_END_EVENT;) {
        yaml_event_t event;
        if (yaml_parser_parse(parser.get(), &event) == 0)
            parser.fail(name);
        type = event.type;
        depth += type == YAML_SEQUENCE_START_EVENT || type == YAML_MAPPING_START_EVENT ? 1 : 0;
        depth -= type == YAML_SEQUENCE_END_EVENT || type == YAML_MAPPING_END_EVENT ? 1 : 0;
        yaml_event_delete(&event);
        if (depth > most_levels)
            data_failure("{}: its lists and mappings are more than {} levels deep: it is not a tuning file",
                         name, most_levels);
    }
}

} // namespace

YamlNode::YamlNode(yaml_document_t* document, int index)
    : document_(document), node_(yaml_document_get_node(document, index)) {}

YamlNode YamlNode::operator[](std::string_view key) const {
    if (!is_mapping())
        return {};
    for (const auto* pair = node_->data.mapping.pairs.start; pair < node_->data.mapping.pairs.top; ++pair)
        if (YamlNode(document_, pair->key).text() == key)
            return {document_, pair->value};
    return {};
}

std::vector<YamlNode> YamlNode::elements() const {
    std::vector<YamlNode> found;
    if (node_ != nullptr && node_->type == YAML_SEQUENCE_NODE)
        for (const auto* item = node_->data.sequence.items.start; item < node_->data.sequence.items.top;
             ++item)
            found.emplace_back(document_, *item);
    return found;
}

std::string_view YamlNode::text() const {
    if (node_ == nullptr || node_->type != YAML_SCALAR_NODE)
        return {};
    return {reinterpret_cast<const char*>(node_->data.scalar.value), node_->data.scalar.length};
}

std::optional<double> YamlNode::number() const {
    const std::string_view digits = text();
    double value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc{} || end != digits.data() + digits.size())
        return std::nullopt;
    return value;
}

YamlDocument::YamlDocument(const std::string& bytes, const std::string& name) {
    check_depth(bytes, name);
    Parser parser(bytes);
    if (yaml_parser_load(parser.get(), &document_) == 0)
        parser.fail(name);
}

YamlDocument::~YamlDocument() {
    yaml_document_delete(&document_);
}

} // namespace zerklsc::tool
