// An outside program built against the installed package.
#include <KestoDM/KestoDM.h>

#include <iostream>
#include <memory>
#include <sstream>

int main() {
    std::ostringstream log;
    auto library = Kesto::DmLibrary::newLibrary(std::make_shared<Kesto::BaContext>(), &log,
                                                Kesto::DmExternOperator::kNone);
    library->getErrorLogger()->reportMessage(std::make_shared<Kesto::DmMessageReport>(
        Kesto::BaMessageTypes::kMessageInfo, "<consumer>", "hello", "from outside"));
    std::cout << "consumer: library made, " << library->getErrorLogger()->getMessageCount() << " message\n";
    library.reset();
    return log.str() == "info: <consumer>: hello: from outside\n\n" ? 0 : 1;
}
