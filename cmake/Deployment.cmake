# What whoever builds Glintar for others decides. All addresses are empty at first: such a program asks no server of
# its makers, and leaves out whatever would lead to one.

# The configuration server, which offers newer versions of the two shipped documents (docs/configuration-server.md):
# scheme, host, port, path without a slash at its end. https, or http to a loopback address. The environment variable of
# this name overrides it.
set(GLINTAR_CONFIG_SERVER "" CACHE STRING "Address of the configuration server")

# Where "Send Email" in the settings writes to: one mail address, such as help@example.org. Without it the button is left
# out.
set(GLINTAR_SUPPORT_ADDRESS "" CACHE STRING "Mail address for the users' questions")

# The program's home page: an https address. It stands under "About" and "Contact" in the settings, or in neither.
set(GLINTAR_WEBSITE "" CACHE STRING "Address of the website")

# The page with answers to frequent questions: an https address. It stands under "Contact" in the settings, or not.
set(GLINTAR_FAQ_PAGE "" CACHE STRING "Address of the FAQ page")

# The release feed, by which the program learns once a day that there is a newer version: the https address of a document
# {"releases": [{"version": "1.3.0", "notes": "What is new.", "url": "https://example.org/1.3.0"}]}, in any order, versions
# by the rules of semver.org. Without it "Check for Updates..." says that this build does not look for updates.
set(GLINTAR_RELEASE_FEED "" CACHE STRING "Address of the release feed")

# Who answers for the Debian packages: a name and a mail address. It is in the packages alone.
set(GLINTAR_MAINTAINER "The Glintar developers <developers@glintar.invalid>" CACHE STRING "Maintainer of the packages")
