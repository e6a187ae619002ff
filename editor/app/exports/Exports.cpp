int EkUnused();
