// A YAML document that is read: libyaml with names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <yaml.h>

namespace zerklsc::tool {

// One node of a document, or none: what is looked up in none is none.
class YamlNode {
  public:
    YamlNode() = default;
    YamlNode(yaml_document_t* document, int index);

    explicit operator bool() const { return node_ != nullptr; }
    bool is_mapping() const { return node_ != nullptr && node_->type == YAML_MAPPING_NODE; }
    // The value of the first such key of a mapping.
    YamlNode operator[](std::string_view key) const;
    // The elements of a sequence; none of anything else.
    std::vector<YamlNode> elements() const;
    // The text of a scalar; empty for anything else.
    std::string_view text() const;
    // The beginning of it, for messages.
    std::string_view shown() const { return text().substr(0, 40); }
    // The number that a scalar is, and nothing else is there.
    std::optional<double> number() const;

  private:
    yaml_document_t* document_ = nullptr;
    yaml_node_t* node_ = nullptr;
};

class YamlDocument {
  public:
    // Takes the first document of the bytes; a data failure that begins with `name` says where it is broken.
    YamlDocument(const std::string& bytes, const std::string& name);
    ~YamlDocument();
    YamlDocument(const YamlDocument&) = delete;
    YamlDocument& operator=(const YamlDocument&) = delete;

    YamlNode root() { return {&document_, 1}; }

  private:
    yaml_document_t document_{};
};

} // namespace zerklsc::tool
