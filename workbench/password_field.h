#pragma once

/// Makes password fields known to assistive tools by dots, one a character. The
/// toolkit would tell them the password. Once.
void installPasswordFieldAccessibility();
