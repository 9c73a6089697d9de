// A module of clang-tidy that keeps all other checks from walking through the headers of Qt and of the
// standard library: they would find nothing there that is reported, and take five times as long as the
// program's own code.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>

namespace {

using clang::ast_matchers::MatchFinder;

/// Matches the translation unit, which is visited before all that is in it, and leaves the rest of the walk
/// what the program's own files declare.
class OwnCode : public clang::tidy::ClangTidyCheck {
public:
    using ClangTidyCheck::ClangTidyCheck;

    void registerMatchers(MatchFinder *finder) override
    {
        finder->addMatcher(clang::ast_matchers::translationUnitDecl(), this);
    }

    void check(const MatchFinder::MatchResult &result) override
    {
        std::vector<clang::Decl *> own;
        for (clang::Decl *declaration : result.Context->getTranslationUnitDecl()->noload_decls()) {
            const bool fromOutside = declaration->isFromASTFile() ||
                                     result.SourceManager->isInSystemHeader(declaration->getLocation());
            if (!fromOutside && !declaration->isImplicit())
                own.push_back(declaration);
        }
        result.Context->setTraversalScope(own);
    }
};

class OwnCodeModule : public clang::tidy::ClangTidyModule {
public:
    void addCheckFactories(clang::tidy::ClangTidyCheckFactories &factories) override
    {
        factories.registerCheck<OwnCode>("tarnovel-own-code");
    }
};

const clang::tidy::ClangTidyModuleRegistry::Add<OwnCodeModule> registered("tarnovel",
                                                                          "Keeps to the program's own code");

} // namespace
