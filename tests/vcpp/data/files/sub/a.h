a below
