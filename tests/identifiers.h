// The identities of the product that tests name.

#pragma once

#include <string>

inline const std::string kBase = "com.tessal.inputmethod.Orvane";
inline const std::string kPinyin = kBase + ".pinyin";
inline const std::string kBundleOnDisk = "Library/Input Methods/Orvane.app";
inline const std::string kBundle = "/" + kBundleOnDisk;
