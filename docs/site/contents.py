"""What the site consists of: its chapters, and the document that each page is made from."""

# A chapter's title, and its pages: the page's file, and the document. Debian's tools would compress a changelog.html.
CHAPTERS = (
    ("Start", (("index.html", "README.md"),)),
    ("Tutorials", (
        ("first-call.html", "docs/first-call.md"),
        ("testing-without-a-gateway.html", "docs/testing-without-a-gateway.md"),
        ("python-test-bench.html", "docs/python-test-bench.md"),
    )),
    ("Guides", (
        ("installing.html", "docs/installing.md"),
        ("tarnctl.html", "kit/tarnctl/README.md"),
        ("tarn-gateway.html", "kit/simulator/README.md"),
        ("python.html", "kit/python/README.md"),
        ("mock.html", "kit/mock/README.md"),
        ("libkoriil.html", "kit/host/README.md"),
        ("layout-files.html", "kit/layout/README.md"),
        ("contract.html", "kit/contract/README.md"),
        ("fleet.html", "docs/fleet.md"),
        ("fleet-behaviour.html", "docs/fleet-behaviour.md"),
        ("fleet-policy.html", "docs/fleet-policy.md"),
        ("fleet-envelope.html", "docs/fleet-envelope.md"),
    )),
    ("Project", (
        ("architecture.html", "ARCHITECTURE.md"),
        ("binary-interface.html", "docs/abi.md"),
        ("performance.html", "docs/performance.md"),
        ("openwrt.html", "packaging/openwrt/README.md"),
        ("yocto.html", "packaging/yocto/README.md"),
        ("contributing.html", "CONTRIBUTING.md"),
        ("releasing.html", "docs/releasing.md"),
        ("security.html", "SECURITY.md"),
        ("changes.html", "CHANGELOG.md"),
    )),
)
REFERENCE = "reference/index.html"

# What the line at the head of every page leads to.
MAIN = (("Start", "index.html"), ("Tutorials", "first-call.html"), ("Guides", "installing.html"), ("Reference", REFERENCE),
        ("Changelog", "changes.html"))

PAGES = {document: page for _, pages in CHAPTERS for page, document in pages}


def chapter_of(page):
    """The title of a page's chapter."""
    return next(title for title, pages in CHAPTERS if page in dict(pages))
