#include "workbench/input_source_list.h"

#include <iostream>

namespace service = platform::linux_;

InputSourceList::InputSourceList() : observer_(service::observeInputSources([this] { read(); })) {
  read();
}

void InputSourceList::setEnabled(const QString& id, bool enabled) {
  const std::string sourceId = id.toStdString();
  const auto source = service::findInputSource(sourceId);
  if (!source) return;  // gone since the list was read
  const auto status = service::answerForUser(source, enabled);
  if (status != platform::kNoError)
    std::cerr << "input-source-agent: cannot change " << sourceId << ": status " << status << '\n';
  read();
}

void InputSourceList::read() {
  sources_.clear();
  for (const auto& source : service::installedInputSources()) {
    sources_.append(QVariantMap{
        {"id", QString::fromStdString(source->id)},
        {"name", QString::fromStdString(source->name)},
        {"isEnabled", source->isEnabled},
        {"isCurrent", source->isCurrent},
        {"isAsked", source->isAsked},
        {"isFixed", source->id == service::kBuiltInLayoutId},
    });
  }
  emit sourcesChanged();
}
