#include "Pictures.h"

void DrawPictures(const std::string&, const std::string&, bool, const std::function<void(const std::string&)>&) {}
