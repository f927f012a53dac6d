#include "platform/property_list.h"

#include <QLockFile>
#include <QSaveFile>
#include <QXmlStreamReader>
#include <iostream>

#include "platform/common/property_list_limits.h"
#include "platform/linux/property_list_file.h"
#include "platform/posix/regular_file.h"

namespace platform {

/// An element of XML.
struct OpaqueObject {
  QString name;
  QString text;
  bool operator==(const OpaqueObject&) const = default;
};

bool operator==(const OpaqueValue& left, const OpaqueValue& right) {
  return *left.object == *right.object;
}

namespace {

/// Reads the element that the reader stands at. The reader has an error afterwards
/// if that is not a value.
PropertyListValue readValue(QXmlStreamReader& xml, PropertyListBudget& budget,
                            std::size_t depth = 0) {
  if (!budget.take(depth)) xml.raiseError();
  const QString name = xml.name().toString();
  if (name == u"array") {
    PropertyListArray array;
    while (xml.readNextStartElement()) array.push_back(readValue(xml, budget, depth + 1));
    return array;
  }
  if (name == u"dict") {
    PropertyListDictionary dictionary;
    while (xml.readNextStartElement()) {
      if (xml.name() != u"key") xml.raiseError();
      std::string key = xml.readElementText().toStdString();
      if (!xml.readNextStartElement()) xml.raiseError();
      dictionary.insert_or_assign(std::move(key), readValue(xml, budget, depth + 1));
    }
    return dictionary;
  }
  const QString text = xml.readElementText();
  if (name == u"string") return text.toStdString();
  if (name == u"true" || name == u"false") return name == u"true";
  return OpaqueValue{std::make_shared<const OpaqueObject>(OpaqueObject{name, text})};
}

std::optional<PropertyListDictionary> decode(const std::string& bytes) {
  if (bytes.size() > kPropertyListSizeLimit) return std::nullopt;
  // Some writers begin with an empty line.
  QXmlStreamReader xml(QByteArray::fromStdString(bytes).trimmed());
  if (!xml.readNextStartElement() || xml.name() != u"plist" || !xml.readNextStartElement())
    return std::nullopt;
  PropertyListBudget budget;
  const auto value = readValue(xml, budget);
  while (!xml.atEnd()) xml.readNext();
  const auto* dictionary = value.as<PropertyListDictionary>();
  return dictionary && !xml.hasError() ? std::optional(*dictionary) : std::nullopt;
}

std::string element(const std::string& name, const QString& text) {
  return "<" + name + ">" + text.toHtmlEscaped().toStdString() + "</" + name + ">\n";
}

/// A value as XML. What XML cannot carry, such as a control character, does not
/// read back as the same value.
struct Encoder {
  std::string operator()(bool value) const { return value ? "<true/>\n" : "<false/>\n"; }
  std::string operator()(const std::string& value) const {
    return element("string", QString::fromStdString(value));
  }
  std::string operator()(const PropertyListArray& value) const {
    std::string items;
    for (const auto& item : value) items += std::visit(*this, item);
    return "<array>\n" + items + "</array>\n";
  }
  std::string operator()(const PropertyListDictionary& value) const {
    std::string entries;
    for (const auto& [key, item] : value)
      entries += element("key", QString::fromStdString(key)) + std::visit(*this, item);
    return "<dict>\n" + entries + "</dict>\n";
  }
  std::string operator()(const OpaqueValue& value) const {
    return element(value.object->name.toStdString(), value.object->text);
  }
};

bool refuse(const std::filesystem::path& file, const std::string& problem) {
  std::cerr << file.string() << " stays as it is: " << problem << std::endl;
  return false;
}

}  // namespace

std::optional<PropertyListDictionary> readPropertyListDictionary(
    const std::filesystem::path& file) {
  // One byte more than is allowed, so that decode() sees that it is too much.
  const auto bytes = readRegularFile(file, kPropertyListSizeLimit + 1);
  return bytes ? decode(*bytes) : std::nullopt;
}

bool linux_::editPropertyListFile(const std::filesystem::path& file,
                                  const std::function<void(PropertyListDictionary&)>& change) {
  std::error_code error;
  std::filesystem::create_directories(file.parent_path(), error);
  const QString name = QString::fromStdString(file.string());
  QLockFile lock(name + QStringLiteral(".lock"));
  constexpr int kPatience = 5'000;  // milliseconds
  if (!lock.tryLock(kPatience)) return refuse(file, "its lock cannot be had");

  const auto stored = readPropertyListDictionary(file);
  if (!stored && std::filesystem::exists(std::filesystem::symlink_status(file, error)))
    return refuse(file, "it is damaged or cannot be read");
  const auto before = stored.value_or(PropertyListDictionary());
  PropertyListDictionary after = before;
  change(after);
  if (after == before) return true;

  const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" +
                          Encoder{}(after) + "</plist>\n";
  if (decode(xml) != after) return refuse(file, "a value cannot be written");
  QSaveFile fresh(name);
  if (fresh.open(QIODevice::WriteOnly) && fresh.write(QByteArray::fromStdString(xml)) >= 0 &&
      fresh.commit())
    return true;
  return refuse(file, fresh.errorString().toStdString());
}

}  // namespace platform
