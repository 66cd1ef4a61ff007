// The console's back ends in a web page: the page's terminal widget, and the keys it sends.
#pragma once
#include <memory>

class ConsoleBackend;
class KeySource;

std::unique_ptr<ConsoleBackend> MakeWebBackend();
std::unique_ptr<KeySource> MakeWebKeys();
