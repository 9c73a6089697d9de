#pragma once

#include <functional>

#include "language/AppLanguage.h"

namespace tarnovel::app {

/// A text that is asked for whenever it is shown, so that it follows the language and the state.
using Phrase = std::function<QString()>;

/// `said({"取消", "Cancel", "Annuler"})`.
inline Phrase said(const Text &text)
{
    return [text] { return localized(text); };
}

} // namespace tarnovel::app
