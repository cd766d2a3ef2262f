# Makes the page of a manual from docs/console.md: it has no pictures, and its first section tells the name.
/^!\[/d
/^<!--/d
s/^# quorix-console$/# NAME\n\nquorix-console - a Jabber client for the terminal\n\n# DESCRIPTION/
