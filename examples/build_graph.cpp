// Builds a small graph by hand: a compound whose input feeds a built-in node,
// whose output feeds the compound's output. Prints the graph and the message
// that a refused connection leaves in the library's log.
#include <KestoDM/KestoDM.h>

#include <iostream>
#include <memory>

int main() {
    using namespace Kesto;
    auto const library =
        DmLibrary::newLibrary(std::make_shared<BaContext>(), &std::cout, DmExternOperator::kSafe);
    std::shared_ptr<DmNodeDef> pass;
    if (!library->getGlobalNamespace()->findNodeDef("Core::Graph::pass", pass)) {
        std::cerr << "no Core::Graph::pass\n";
        return 1;
    }

    auto const graph = DmCompound::createCompound("graph"); // with its self node, ready for ports
    graph->setLibrary(library.get());                       // its refusals go to the library's log
    graph->setScope(library->getGlobalNamespace().get(), kFailOnClash);
    graph->addPortDescription(
        DmPortDescription::newPortDescription("in", DmLibrary::getIntType(), kDirectionInput, kNameVerbatim),
        kFailOnClash);
    graph->addPortDescription(DmPortDescription::newPortDescription("out", DmLibrary::getIntType(),
                                                                    kDirectionOutput, kNameVerbatim),
                              kFailOnClash);

    auto const node = DmNode::createNode("p", pass);
    graph->addNode(node, kMakeUnique);
    std::shared_ptr<DmConnection> connection;
    bool const made = graph->makeConnection(".in", "p.input", connection).isSuccess() &&
                      graph->makeConnection("p.output", ".out", connection).isSuccess();

    std::cout << "graph " << graph->getName() << ": " << graph->getNodes().size() << " node, "
              << graph->getConnections().size() << " connections\n";
    for (auto const& c : graph->getConnections()) {
        std::string source;
        std::string target;
        c->getSourcePort()->resolveFullName(source);
        c->getTargetPort()->resolveFullName(target);
        std::cout << "  " << source << " -> " << target << '\n';
    }

    // Refused: the input already has a feeder. The reason goes to the log.
    graph->makeConnection(".in", "p.input", connection);
    library->getErrorLogger()->printAndClearMessages();
    return made ? 0 : 1;
}
